// kvcheck's command line.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "options.h"

namespace {

Parsed Parse(std::initializer_list<const char*> args, Options* o) {
    std::vector<std::string> words{"kvcheck"};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& w : words) argv.push_back(&w[0]);
    argv.push_back(nullptr);
    return ParseOptions(static_cast<int>(words.size()), argv.data(), o);
}

const MessageRow& RowOf(Message m) { return Row(m); }

}  // namespace

TEST(Options, OptionsBeforeAndAfterScripts) {
    Options o;
    ASSERT_EQ(Parse({"-w", "a.kvx", "--json", "-", "b.kvx", "-Werror"}, &o), Parsed::Check);
    EXPECT_TRUE(o.bNoWarnings);
    EXPECT_TRUE(o.bJson);
    EXPECT_TRUE(o.bWerror);
    EXPECT_EQ(o.aFiles, (std::vector<std::string>{"a.kvx", "-", "b.kvx"}));
}

TEST(Options, DoubleDashEndsOptions) {
    Options o;
    ASSERT_EQ(Parse({"--", "-w", "--json"}, &o), Parsed::Check);
    EXPECT_FALSE(o.bNoWarnings);
    EXPECT_EQ(o.aFiles, (std::vector<std::string>{"-w", "--json"}));
}

TEST(Options, WrongCommandLines) {
    Options a, b, c, d, e;
    EXPECT_EQ(Parse({"--frobnicate", "a.kvx"}, &a), Parsed::Wrong);
    EXPECT_EQ(Parse({"--warn=KV101", "a.kvx"}, &b), Parsed::Wrong);
    EXPECT_EQ(Parse({"--no-warn=KV203,", "a.kvx"}, &c), Parsed::Wrong);
    EXPECT_EQ(Parse({"--warn=kv203", "a.kvx"}, &d), Parsed::Wrong);
    EXPECT_EQ(Parse({"-w"}, &e), Parsed::Wrong);
}

TEST(Options, HelpAndVersionEndTheRun) {
    Options a, b;
    EXPECT_EQ(Parse({"--help", "--frobnicate"}, &a), Parsed::Done);
    EXPECT_EQ(Parse({"a.kvx", "--version"}, &b), Parsed::Done);
}

TEST(Options, WhichFindingsAreReported) {
    Options all;
    EXPECT_TRUE(all.Reports(RowOf(Message::Semicolon)));
    Options only;
    ASSERT_EQ(Parse({"--warn=KV203,KV218", "--warn=KV210", "a.kvx"}, &only), Parsed::Check);
    EXPECT_TRUE(only.Reports(RowOf(Message::Semicolon)));
    EXPECT_TRUE(only.Reports(RowOf(Message::LongLine)));
    EXPECT_FALSE(only.Reports(RowOf(Message::LowerCased)));
    EXPECT_TRUE(only.Reports(RowOf(Message::LineStart)));
    Options some;
    ASSERT_EQ(Parse({"--no-warn=KV203", "--warn=KV203,KV204", "a.kvx"}, &some), Parsed::Check);
    EXPECT_FALSE(some.Reports(RowOf(Message::Semicolon)));
    EXPECT_TRUE(some.Reports(RowOf(Message::LowerCased)));
    Options none;
    ASSERT_EQ(Parse({"-w", "a.kvx"}, &none), Parsed::Check);
    EXPECT_FALSE(none.Reports(RowOf(Message::LowerCased)));
    EXPECT_TRUE(none.Reports(RowOf(Message::NoPending)));
}
