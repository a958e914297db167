// The message table and the output forms.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "codes.h"
#include "report.h"

TEST(Codes, EachCodeHasOneSeverity) {
    std::map<std::string, Severity> seen;
    for (int i = 0; i < static_cast<int>(Message::Count); ++i) {
        const MessageRow& r = aMessages[i];
        auto found = seen.emplace(r.pszCode, r.eSeverity);
        EXPECT_EQ(found.first->second, r.eSeverity) << r.pszCode;
        EXPECT_EQ(r.eSeverity == Severity::Error, r.pszCode[2] == '1') << r.pszCode;
    }
    EXPECT_EQ(seen.size(), 30u);
}

TEST(Codes, WarningCodes) {
    EXPECT_TRUE(IsWarningCode("KV201"));
    EXPECT_TRUE(IsWarningCode("KV218"));
    EXPECT_FALSE(IsWarningCode("KV101"));
    EXPECT_FALSE(IsWarningCode("KV219"));
    EXPECT_FALSE(IsWarningCode("kv201"));
    EXPECT_FALSE(IsWarningCode(""));
}

TEST(Codes, ArgumentsGoInOrder) {
    EXPECT_EQ(FormatMessage(Message::NoPending, {"&NEXT", "&FOR"}),
              "&NEXT has no matching block open here: kvexec reports \"No pending &FOR\"");
    EXPECT_EQ(FormatMessage(Message::LongLine, {"1106", "2"}),
              "line of 1106 bytes: kvexec reads it as 2 lines of at most 1023 bytes");
}

TEST(Report, SortsByLineColumnAndCode) {
    Report r;
    r.Add(2, 1, Message::LongLine, {"1", "2"});
    r.Add(2, 1, Message::LineStart, {"2"});
    r.Add(1, 8, Message::SleepNegative);
    r.Add(1, 3, Message::ShiftNegative);
    r.Sort();
    const auto& f = r.Findings();
    ASSERT_EQ(f.size(), 4u);
    EXPECT_EQ(f[0].iColumn, 3);
    EXPECT_EQ(f[1].iColumn, 8);
    EXPECT_STREQ(f[2].Row().pszCode, "KV101");
    EXPECT_STREQ(f[3].Row().pszCode, "KV210");
}

TEST(Report, JsonStrings) {
    EXPECT_EQ(JsonString("a \"b\" \\ c"), "\"a \\\"b\\\" \\\\ c\"");
    EXPECT_EQ(JsonString(std::string("\x01\t\x1b\x7f", 4)), "\"\\u0001\\u0009\\u001b\\u007f\"");
    EXPECT_EQ(JsonString("\xc3\xa9"), "\"\xc3\xa9\"");
}
