#include "lib/scan_array.hpp"

#include <gtest/gtest.h>

#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

enum Member { Contains, NotContain, Equals, NotEqual, StartsWith, NotStartWith, EndsWith, NotEndWith, LikeIt };

std::int32_t RunFind(lib_clsScanArray& a, Member m, const char* find, bool top, bool cs, bool ignore, std::int16_t max) {
    switch (m) {
        case Contains: return a.FindContains(find, top, cs, ignore, max);
        case NotContain: return a.FindDoesNotContain(find, top, cs, ignore, max);
        case Equals: return a.FindEquals(find, top, cs, ignore, max);
        case NotEqual: return a.FindDoesNotEqual(find, top, cs, ignore, max);
        case StartsWith: return a.FindStartsWith(find, top, cs, ignore, max);
        case NotStartWith: return a.FindDoesNotStartWith(find, top, cs, ignore, max);
        case EndsWith: return a.FindEndsWith(find, top, cs, ignore, max);
        case NotEndWith: return a.FindDoesNotEndWith(find, top, cs, ignore, max);
        case LikeIt: return a.FindLike(find, top, ignore, max);
    }
    return -1;
}

TEST(ScanArray, FindFamily) {
    const std::vector<std::string> source = {"", "Alpha", "beta gamma", "", "Gamma\r\n ray", "alpha"};
    const struct { Member m; const char* find; bool top, cs, ignore; std::int16_t max; std::int32_t cursor, found, loc; } rows[] = {
        {Contains, "gamma", true, true, false, 0, 5, 2, 6},
        {Contains, "GAMMA", true, true, false, 0, 5, 0, 0},
        {Contains, "GAMMA", false, false, false, 0, 3, 4, 1},
        {Contains, "", true, true, false, 0, 1, 1, 1},   // the first item that is not empty
        {Contains, "", false, true, false, 0, 3, 4, 1},
        {Contains, "alpha", true, true, false, 1, 4, 0, 0},  // one item looked at
        {Contains, "alpha", true, true, false, 100, 4, 5, 1},
        {Contains, "lpha", false, true, false, 0, 2, 5, 2},
        {NotContain, "a", true, true, false, 0, 1, 3, 0},
        {Equals, "ALPHA", true, false, false, 0, 3, 1, 1},
        {Equals, "ALPHA", true, true, false, 0, 3, 0, 0},
        {Equals, "gamma ray", true, false, true, 0, 1, 4, 1},
        {Equals, "gamma ray", true, false, false, 0, 1, 0, 0},
        {NotEqual, "Alpha", true, true, false, 0, 1, 2, 1},
        {StartsWith, "", false, true, false, 0, 3, 3, 1},  // the left part of length 0 is there in any item
        {StartsWith, "BETA", true, false, false, 0, 1, 2, 1},
        {NotStartWith, "al", true, false, false, 0, 1, 2, 1},
        {EndsWith, "Alpha", true, true, false, 0, 3, 1, 0},
        {EndsWith, "RAY", true, false, true, 0, 1, 4, 8},  // from the stored item, CR LF and blank counted
        {NotEndWith, "a", true, true, false, 0, 1, 3, -1},
        {LikeIt, "?ETA*", true, true, false, 0, 1, 2, 1},
        {LikeIt, "[!a]*", true, true, false, 0, 1, 2, 1},
        {LikeIt, "g*#", true, true, false, 0, 1, 0, 0},
    };
    for (const auto& r : rows) {
        lib_clsScanArray a;
        a.LoadArray(source, 5, false);
        a.SetMatchItemNo(9);
        a.SetCurrItemNo(r.cursor);
        EXPECT_EQ(RunFind(a, r.m, r.find, r.top, r.cs, r.ignore, r.max), r.found) << r.m << " " << r.find;
        EXPECT_EQ(a.Match(), r.found != 0) << r.m << " " << r.find;
        EXPECT_EQ(a.MatchItemNo(), r.found);
        EXPECT_EQ(a.MatchItemNoPrev(), 9);
        EXPECT_EQ(a.MatchLocInItem(), r.loc) << r.m << " " << r.find;
        EXPECT_EQ(a.CurrItemNo(), r.found != 0 ? r.found : r.cursor);
    }
}

TEST(ScanArray, ItemsAddDeleteAndLoad) {
    lib_clsScanArray a;
    EXPECT_EQ(a.CurrItemNo(), 1);
    EXPECT_EQ(ErrorOf([&] { a.Item(0); }), kSubscriptOutOfRange);  // no array yet
    for (const char* s : {"one", "two", "three", "four"}) EXPECT_TRUE(a.Add(s));
    EXPECT_EQ(a.FindContains("o", false, true, false, 0), 1);  // a new object searches from the first item
    EXPECT_EQ(a.Item(0), "");
    EXPECT_EQ(FailureOf([&] { a.Item(5); }), "-2147220504 clsScanArray:Item_Get(): Invalid Index");
    EXPECT_EQ(FailureOf([&] { a.SetItem(-1, "x"); }), "-2147220504 clsScanArray:Item_Let(): Invalid Index");
    EXPECT_EQ(FailureOf([&] { a.Delete(5); }), "-2147221503 clsScanArray_ItemDel: Invalid Index");
    a.SetItem(4, "FOUR");

    // Deleting item 2: on the match and the cursor they go to 0, above it they move up.
    a.SetMatchItemNo(3);
    a.SetMatchItemNo(2);
    a.SetCurrItemNo(2);
    EXPECT_EQ(a.MatchItem(), "two");
    EXPECT_TRUE(a.Delete(2));
    EXPECT_EQ(a.Count(), 3);
    EXPECT_EQ(a.Item(2) + a.Item(3), "threeFOUR");
    EXPECT_FALSE(a.Match());
    EXPECT_EQ(a.MatchItemNo() + a.CurrItemNo(), 0);
    EXPECT_EQ(a.MatchItemNoPrev(), 2);
    EXPECT_EQ(a.CurrItem(), "");
    // From cursor 0 the search starts at the unused element, the empty string.
    EXPECT_EQ(a.FindStartsWith("", false, true, false, 0), 0);
    EXPECT_TRUE(a.Match());

    // Only non-empty texts are taken; the array keeps its size, so Add does not grow it.
    EXPECT_EQ(a.LoadArray({"x", "", "", ""}, 3, true), 0);
    EXPECT_EQ(a.LoadArray({"x", "a", "", "b"}, 3, true), 2);
    EXPECT_TRUE(a.Add("c"));
    EXPECT_EQ(a.Item(1) + a.Item(2) + a.Item(3), "abc");
    EXPECT_EQ(a.LoadArray({"x", "a", "", "b"}, 3, false), 3);
    EXPECT_EQ(a.Item(0) + a.Item(2), "x");
    EXPECT_EQ(a.CurrItemNo(), 0);  // searches and the cursor stay
}

}  // namespace
}  // namespace ostrivane
