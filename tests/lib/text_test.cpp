#include <gtest/gtest.h>

#include "lib/errors.hpp"
#include "lib/text.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

TEST(Case, CoversLatin1Letters) {
    EXPECT_EQ(UCase("Bench 1 \xe9t\xe9"), "BENCH 1 \xc9T\xc9");
    EXPECT_EQ(LCase("GROUP\xc0\xde"), "group\xe0\xfe");
    // the multiplication and division signs are no letters; 0xFF has no capital here
    EXPECT_EQ(UCase("\xf7\xff"), "\xf7\xff");
    EXPECT_EQ(LCase("\xd7"), "\xd7");
    EXPECT_TRUE(EqualsNoCase("Group1", "GROUP1"));
    EXPECT_FALSE(EqualsNoCase("Group1", "Group12"));
    EXPECT_EQ(CompareNoCase("abc", "ABD"), -1);
    EXPECT_EQ(CompareNoCase("ab", "AB"), 0);
    EXPECT_LT(CompareNoCase("ab", "abc"), 0);
    EXPECT_EQ(FindNoCase("xxDefaultsyy", "defaults"), 2u);
    EXPECT_EQ(FindNoCase("ab", "abc"), std::string_view::npos);
}

TEST(Trim, RemovesSpacesButNotTabs) {
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("\ta\t"), "\ta\t");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(LTrim("  a ") + "|" + RTrim("  a "), "a |  a");
}

TEST(Like, MatchesTheFiveForms) {
    struct Row { const char* text; const char* pattern; bool match; };
    const Row rows[] = {
        {"abc", "abc", true},   {"abc", "ABC", false},  {"abc", "a?c", true},     {"ac", "a?c", false},
        {"", "*", true},        {"", "", true},         {"a", "", false},         {"OSTRIVANE - BENCH", "OSTRIVANE*", true},
        {"x1y", "x#y", true},   {"xay", "x#y", false},  {"b", "[a-c]", true},     {"d", "[a-c]", false},
        {"d", "[!a-c]", true},  {"b", "[!a-c]", false}, {"a-", "a[-]", true},     {"*", "[*]", true},
        {"x", "[*]", false},    {"ab", "a[]b", true},     {"a", "[a-a]", true},   {"abcabd", "*abd", true}, {"abcab", "*abd", false},
        {"aXbXc", "a*b*c", true}, {"ab", "a*b*c", false}};
    for (const Row& r : rows) EXPECT_EQ(Like(r.text, r.pattern), r.match) << r.text << " Like " << r.pattern;
    EXPECT_EQ(ErrorOf([] { Like("a", "[a"); }), kInvalidPatternString);
}

}  // namespace
}  // namespace ostrivane
