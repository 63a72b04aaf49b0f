#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lib/errors.hpp"
#include "lib/line_parser.hpp"
#include "support/run_time_error.hpp"

// Options are written with designated initializers; the members left out are
// meant to keep their defaults.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace ostrivane {
namespace {

using Parts = std::vector<std::string>;

Parts Split(std::string_view line, const LineParseOptions& o) {
    Parts ary(64);
    const std::int16_t n = lib_GetLineParts3(line, ary, o);
    return Parts(ary.begin() + 1, ary.begin() + 1 + n);
}

const std::string kParserFailure = std::to_string(kObjectErrorBase + 1000) + " Vexil.lib_GetLineParts3: ";

// The options of the two library callers that split paths and web pages.
LineParseOptions PathCall(std::string sep) {
    return {.DropDelims = std::move(sep), .DelimsUnused = true, .DelimToPrevPart = true, .KeepPairWhole = true,
            .QuotePairs = "\"\"", .PairInsidePart = true, .TrimParts = true};
}

const std::string kNul(1, '\0');

TEST(LineParser, SplitsAsTheTableSays) {
    struct Case { std::string line; LineParseOptions o; Parts want; };
    const Case cases[] = {
        {"", {.DropDelims = "\\"}, {}},
        {"", {.KeepBlanks = true}, {""}},  // the end mark alone ends a blank part
        {"a\\\\b", {.DropDelims = "\\", .KeepBlanks = true}, {"a", "b"}},
        {"a\\", {.DropDelims = "\\", .KeepBlanks = true}, {"a", ""}},
        {"\\\\a", {.DropDelims = "\\", .KeepBlanks = true}, {"", "a"}},
        {"a\\/b", {.DropDelims = "\\", .DropDelims2 = "/", .KeepBlanks = true}, {"a", "", "b"}},
        {"a\\ \\b", {.DropDelims = "\\", .TrimParts = true, .KeepBlanks = true}, {"a", "", "b"}},
        {"a\\,\\b", {.DropDelims = "\\", .HardDelims = ",", .KeepBlanks = true}, {"a", "", "", "b"}},
        {"a,,b", {.HardDelims = ",", .KeepBlanks = true}, {"a", "", "b"}},
        {"axxb", {.DropDelims = "x", .HardDelims = "x", .KeepBlanks = true}, {"a", "b"}},  // first row wins
        {std::string("a\0b", 3), {}, {"a", "b"}}, {"  a  ,  b ", {.HardDelims = ","}, {"  a  ", "  b "}},
        {"  a  ,  ,\tb ", {.HardDelims = ",", .TrimParts = true}, {"a", "\tb"}},
        {"key=value", {.PartDelims = "=", .DelimToPrevPart = true}, {"key=", "value"}},
        {"=a", {.PartDelims = "=", .KeepBlanks = true}, {"", "=", "a"}},
        {"ab\"c d\"ef g", {.HardDelims = " ", .QuotePairs = "\"\""}, {"ab", "c d", "ef", "g"}},
        {"ab\"c d\"ef g", {.HardDelims = " ", .QuotePairs = "\"\"", .PairInsidePart = true}, {"abc def", "g"}},
        {"ab\"c d\"ef", {.HardDelims = " ", .KeepQuotePairs = "\"\""}, {"ab", "\"c d\"", "ef"}},
        {"\"a\"", {.QuotePairs = "\"\"", .KeepBlanks = true}, {"", "a", ""}},
        {"x\"\"", {.QuotePairs = "\"\"", .KeepBlanks = true}, {"x", ""}},  // a closer ends only an open part
        {"f(a (b c) d) g", {.HardDelims = " ", .QuotePairs = "()"}, {"f", "a (b c) d", "g"}},
        {"f(a (b c) d) g", {.HardDelims = " ", .QuotePairs = "()", .FlattenNested = true, .TrimParts = true},
         {"f", "a", "b c", "d", "g"}},
        {"'a \"b' c\"", {.HardDelims = " ", .QuotePairs = "''\"\""}, {"a \"b' c"}},
        {"a)b", {.QuotePairs = "()"}, {"a", "b"}},
        {"x (a b", {.HardDelims = " ", .QuotePairs = "()"}, {"x", "a b" + kNul}},
        {"a[b c]d", {.HardDelims = " ", .SplitPairs = "[]"}, {"a", "b", "c", "d"}},
        {"[]", {.SplitPairs = "[]", .KeepBlanks = true}, {"", "", ""}},
        {"[a b]", {.HardDelims = " ", .SplitPairs = "[]", .QuotePairs = "[]"}, {"a b"}},
        {"x'y'z", {.KeepSplitPairs = "''", .KeepPairWhole = true}, {"x", "'y'", "z"}},
        {"<b>x</b>", {.KeepSplitPairs = "<>"}, {"<", "b", ">", "x", "<", "/b", ">"}},
        {"<p class=\"x\">Hi <b>there</b></p>",
         {.KeepSplitPairs = "<>", .KeepPairWhole = true, .QuotePairs = "\"\"", .PairInsidePart = true, .TrimParts = true},
         {"<p class=x>", "Hi", "<b>", "there", "</b>", "</p>"}},
        {"C:\\Program Files\\\\ \"My Data\" \\ sub dir \\file.ini", PathCall("\\"),  // the library's own path splits
         {"C:", "Program Files", "My Data", "sub dir", "file.ini"}},
        {"\\\\server\\share\\a\"b\\c\"d\\", PathCall("\\"), {"server", "share", "ab\\cd"}},
    };
    for (const Case& c : cases) EXPECT_EQ(Split(c.line, c.o), c.want) << "line: " << c.line;
}

TEST(LineParser, PartLocsHoldEachPartsFirstCharacter) {
    struct Case { std::string line; LineParseOptions o; std::vector<std::int32_t> want; };
    const Case cases[] = {
        {" ab,,cd", {.HardDelims = ",", .TrimParts = true}, {1, 6}},
        {",ab,,cd", {.HardDelims = ",", .KeepBlanks = true}, {0, 2, 2, 6}},  // a blank keeps the last start
        {"x \"ab\"", {.HardDelims = " ", .QuotePairs = "\"\""}, {1, 4}},
        {"x \"ab\"", {.HardDelims = " ", .KeepQuotePairs = "\"\""}, {1, 3}},
    };
    for (const Case& c : cases) {
        Parts ary(10);
        std::vector<std::int32_t> locs(10, -7);
        const std::int16_t n = lib_GetLineParts3(c.line, ary, c.o, &locs);
        EXPECT_EQ(std::vector<std::int32_t>(locs.begin() + 1, locs.begin() + 1 + n), c.want) << c.line;
        EXPECT_EQ(locs[0], -7);
    }
}

TEST(LineParser, TableHoldsFiftyRows) {
    const std::string delims24 = "abcdefghijklmnopqrstuvwx";  // 48 rows, end marks make 50
    EXPECT_EQ(Split("1x2a3", {.DropDelims = delims24}), (Parts{"1", "2", "3"}));
    const std::string delims23 = delims24.substr(1);
    EXPECT_EQ(Split("1[2]3", {.DropDelims = delims23, .SplitPairs = "[]"}), (Parts{"1", "2", "3"}));
    // row 51 is reached before the pair count is looked at
    const LineParseOptions tooMany[] = {{.DropDelims = delims24 + "y"}, {.DropDelims = delims23, .SplitPairs = "[]{"},
                                        {.PartDelims = "=", .QuotePairs = std::string(48, '"')}};
    for (const LineParseOptions& o : tooMany) EXPECT_EQ(ErrorOf([&] { Split("1", o); }), kSubscriptOutOfRange);
    const LineParseOptions odd[] = {{.QuotePairs = "\""}, {.KeepQuotePairs = "()["}, {.SplitPairs = "<"},
                                    {.KeepSplitPairs = "<>{"}, {.DropDelims = "\\", .SplitPairs = "[]<"}};
    for (const LineParseOptions& o : odd) EXPECT_EQ(FailureOf([&] { Split("a", o); }), kParserFailure + "Uneven pair passed");
}

TEST(LineParser, TooManyPartsKeepsThoseStored) {
    Parts ary(4, "old");
    EXPECT_EQ(FailureOf([&] { lib_GetLineParts3("a b c d e", ary, {.HardDelims = " "}); }),
              kParserFailure + "LineParts array too small (Part Cnt>3)\r\nLine=a b c d e" + kNul);
    EXPECT_EQ(ary, (Parts{"old", "a", "b", "c"}));
    Parts none;
    EXPECT_EQ(FailureOf([&] { lib_GetLineParts3("a", none, {}); }),
              kParserFailure + "LineParts array too small (Part Cnt>-1)\r\nLine=a" + kNul);

    Parts big(100000);
    std::string line;
    for (int i = 0; i < 33000; ++i) line += "p,";
    EXPECT_EQ(ErrorOf([&] { lib_GetLineParts3(line, big, {.HardDelims = ","}); }), kOverflow);
    EXPECT_EQ(big[32767] + "|" + big[32768], "p|");

    Parts ary2(10);
    std::vector<std::int32_t> locs(2);
    EXPECT_EQ(ErrorOf([&] { lib_GetLineParts3("a b c", ary2, {.HardDelims = " "}, &locs); }), kSubscriptOutOfRange);
    EXPECT_EQ(ary2[2], "b");
    EXPECT_EQ(locs[1], 1);
}

TEST(LineParser, HandlesMegabyteLines) {
    const std::size_t mb = 1 << 20;
    Parts ary(4);
    const std::string quoted = "\"" + std::string(mb, 'q');
    ASSERT_EQ(lib_GetLineParts3(quoted, ary, PathCall("\\")), 1);
    EXPECT_EQ(ary[1].size(), mb + 1);
    ASSERT_EQ(lib_GetLineParts3(std::string(mb, '('), ary, {.QuotePairs = "()", .FlattenNested = true}), 1);
    EXPECT_EQ(ary[1], kNul);  // the end mark, swallowed by the open pairs
    EXPECT_EQ(lib_GetLineParts3(std::string(mb, '\\'), ary, {.DropDelims = "\\", .KeepBlanks = true}), 2);
}

}  // namespace
}  // namespace ostrivane
