// Which locale names start-up may leave unread until a multibyte character needs them.
#include <cctype>
#include <clocale>
#include <string>

#include "test_support.h"

namespace {

TEST(KavroLocale, TheCLocaleUnderEveryNameIsDeferred) {
    for (const char* name : {"", "C", "POSIX"}) EXPECT_TRUE(kavro::LocaleDeferrable(name)) << name;
}

TEST(KavroLocale, UtfEightLocalesAreDeferredWhateverTheCodesetSpelling) {
    for (const char* name : {"C.UTF-8", "C.utf8", "en_US.UTF-8", "de_DE.utf8", "de_DE.UTF-8@euro", "ja_JP.Utf-8",
                             "sr_RS.UTF-8@latin", "el_GR.UTF8"})
        EXPECT_TRUE(kavro::LocaleDeferrable(name)) << name;
}

TEST(KavroLocale, EightBitLocalesAreReadAtOnce) {
    for (const char* name : {"en_US", "de_DE.ISO-8859-1", "de_DE@euro", "ru_RU.KOI8-R", "en_US.UTF-16", "C.UTF-88",
                             "fr_FR.ISO-8859-15@euro"})
        EXPECT_FALSE(kavro::LocaleDeferrable(name)) << name;
}

// Dotted and dotless i: these fold I and i otherwise than the C locale, so their tables differ.
TEST(KavroLocale, LanguagesWithTheirOwnCaseOfIAreReadAtOnce) {
    for (const char* name : {"tr_TR.UTF-8", "tr_CY.UTF-8", "az_AZ.UTF-8", "crh_UA.UTF-8", "ku_TR.UTF-8",
                             "tt_RU.UTF-8@iqtelif", "tr.UTF-8"})
        EXPECT_FALSE(kavro::LocaleDeferrable(name)) << name;
    EXPECT_TRUE(kavro::LocaleDeferrable("tk_TM.UTF-8"));  // only a prefix in common
}

TEST(KavroLocale, PathsAreReadAtOnce) { EXPECT_FALSE(kavro::LocaleDeferrable("/usr/lib/locale/x.UTF-8")); }

// What deferring relies on: every installed locale it would defer classifies and folds every
// byte as the C locale does.
TEST(KavroLocale, DeferredLocalesThatAreInstalledMatchTheCLocaleByteForByte) {
    const char* saved = setlocale(LC_CTYPE, nullptr);
    std::string restore = saved ? saved : "C";
    int checked = 0;
    for (const char* name : {"C.UTF-8", "C.utf8", "en_US.UTF-8", "de_DE.UTF-8", "el_GR.UTF-8", "ru_RU.UTF-8",
                             "ja_JP.UTF-8", "fr_FR.UTF-8"}) {
        if (!kavro::LocaleDeferrable(name) || !setlocale(LC_CTYPE, name)) continue;
        ++checked;
        for (int c = 0; c < 256; ++c) {
            const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
            const bool digit = c >= '0' && c <= '9';
            EXPECT_EQ(isalpha(c) != 0, letter) << name << " " << c;
            EXPECT_EQ(isalnum(c) != 0, letter || digit) << name << " " << c;
            EXPECT_EQ(isspace(c) != 0, c == ' ' || (c >= '\t' && c <= '\r')) << name << " " << c;
            EXPECT_EQ(tolower(c), c >= 'A' && c <= 'Z' ? c + 32 : c) << name << " " << c;
            EXPECT_EQ(toupper(c), c >= 'a' && c <= 'z' ? c - 32 : c) << name << " " << c;
        }
    }
    setlocale(LC_CTYPE, restore.c_str());
    EXPECT_GT(checked, 0);  // C.UTF-8 is part of the C library
}

}  // namespace
