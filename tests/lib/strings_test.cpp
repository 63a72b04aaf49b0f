#include "lib/strings.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "fakes/fake_platform.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

TEST(PathStrings, FileNameAndDriveOrShare) {
    const struct { const char* path; bool forward; const char* name; const char* drive; } rows[] = {
        {"C:\\dir\\file.txt", false, "file.txt", "C:"},
        {" \"C:\\dir\\\" ", false, "", "C:"},
        {"C:", false, "", "C:"},
        {"C:file", false, "C:file", ""},
        {"\\\\srv\\share", false, "", "\\\\srv\\share"},
        {"\\\\srv\\share\\f", false, "f", "\\\\srv\\share"},
        {"\\\\srv", false, "", ""},
        {"dir\\f", false, "f", ""},
        {"/x/f", false, "/x/f", ""},  // no separator of the backslash form
        {"rel/a b.txt", true, "a b.txt", ""},
        {"//srv/share", true, "", "//srv/share"},
        {"", true, "", ""},
        {"/", true, "", "/"},
        {"/proc/self/no-such/x", true, "x", "/proc"},  // a mount point, the nearest existing ancestor's
    };
    for (const auto& r : rows) {
        EXPECT_EQ(lib_GetFileName(r.path, r.forward), r.name) << r.path;
        EXPECT_EQ(lib_GetDriveOrShare(r.path, r.forward), r.drive) << r.path;
    }
    EXPECT_EQ(lib_GetCurrentDrive().front(), '/');
}

TEST(PathStrings, PathLevels) {
    const struct { const char* path; int level; bool to, forward, from, joinForward; const char* expected; } rows[] = {
        {"C:\\a\\b\\c", 1, false, false, false, false, "C:"},
        {"C:\\a\\\\b\\c", 3, false, false, false, false, "b"},
        {"C:\\a\\b\\c", -1, false, false, false, false, "c"},
        {"C:\\a\\b\\c", -2, true, false, false, false, "C:\\a\\b"},
        {"C:\\a\\b\\c", 2, false, false, true, true, "a/b/c"},
        {"C:\\a\\b\\c", 5, true, false, false, false, ""},
        {"C:\\a\\b\\c", 0, false, false, false, false, ""},
        {"C:\\a\\b\\c", -5, true, false, false, false, ""},
        {"\\\\srv\\sh\\a", 1, false, false, false, false, "\\\\srv\\sh"},
        {"\\\\srv\\sh\\a", -1, true, false, false, false, "\\\\srv\\sh\\a"},
        {"http://host/a/b", 1, false, true, false, true, "http://host"},
        {"http://host/a/b", -2, true, true, false, true, "http://host/a"},
        {"/home/u/d", 1, false, true, false, true, "/"},
        {"/home/u/d", -2, true, true, false, true, "/home/u"},
        {"a\\b", -1, false, true, false, true, "b"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(lib_GetPathLevel(r.path, r.level, r.to, r.forward, false, r.from, r.joinForward), r.expected)
            << r.path << " " << r.level;
    TempDir dir;
    std::filesystem::create_directory(dir.path() / "x");
    EXPECT_EQ(lib_GetPathLevel(dir.file("x/y/z"), -1, true, true, true, false, true), dir.file("x"));
    EXPECT_EQ(lib_GetPathLevel("no-such/y", -1, true, true, true, false, true), "");
}

TEST(PathStrings, FullPath) {
    const struct { const char* path; const char* base; bool forward; const char* expected; } rows[] = {
        {"..\\x", "C:\\a\\b", false, "C:\\a\\x"},
        {"..\\..\\x", "C:\\a\\b", false, "C:\\x"},
        {"x\\y", "D:", false, "D:\\x\\y"},
        {"\\y", "D:", false, "D:\\y"},
        {"C:\\y", "D:", false, "C:\\y"},
        {"../x", "/home/u/d", true, "/home/u/x"},
        {"a/../b/../c", "/r/s/t", true, "/r/c"},  // every ".." counts, only the last one's tail is kept
        {"sub/x", "", true, "sub/x"},
    };
    for (const auto& r : rows) EXPECT_EQ(lib_GetFullPath(r.path, r.base, r.forward), r.expected) << r.path;
}

TEST(TextRoutines, TrimCutCount) {
    EXPECT_EQ(lib_TrimChars("  xXabc  ", "x", true, true), "abc");
    EXPECT_EQ(lib_TrimChars("xxabc", "x", false, true), "xabc");
    EXPECT_EQ(lib_TrimChars("abc...", "..", true, false), "abc.");
    EXPECT_EQ(lib_TrimChars(" abc ", "", true, false), "abc");
    EXPECT_EQ(lib_CutAtNull(std::string("ab\0cd", 5)), "ab");
    EXPECT_EQ(lib_CutAtNull("ab"), "ab");
    const struct { const char* text; const char* find; CompareMode mode; int count; } rows[] = {
        {"aaa", "aa", vbBinaryCompare, 2}, {"AaA", "a", vbBinaryCompare, 1}, {"AaA", "a", vbTextCompare, 3},
        {"abc", "", vbBinaryCompare, 3},   {"", "a", vbTextCompare, 0},
    };
    for (const auto& r : rows) EXPECT_EQ(lib_CountOccurrences(r.text, r.find, r.mode), r.count) << r.text;
    EXPECT_EQ(ErrorOf([] { lib_CountOccurrences(std::string(32768, 'a'), "a", vbBinaryCompare); }), kOverflow);
}

TEST(TextRoutines, ReplaceText) {
    const struct { const char* text; const char* find; const char* with; bool matchCase, rescan; const char* expected; bool rescanAfter; } rows[] = {
        {"banana", "a", "aa", false, true, "baanaanaa", false},  // a rescan would never end
        {"aaaa", "aa", "a", false, true, "a", true},
        {"aaaa", "aa", "a", false, false, "aa", false},
        {"abAB", "ab", "x", false, false, "xx", false},
        {"abab", "ab", "ba", false, true, "baba", true},
        {"Cat cat", "cat", "dog", true, false, "Dog dog", false},
        {"1one", "1one", "uno", true, false, "Uno", false},
        {" x", " x", "y", true, false, "Y", false},
        {"aXbxc", "x", "", true, true, "abc", true},
        {"abc", "", "z", false, true, "abc", true},
    };
    for (const auto& r : rows) {
        bool rescan = r.rescan;
        EXPECT_EQ(lib_ReplaceText(r.text, r.find, r.with, r.matchCase, rescan), r.expected) << r.text;
        EXPECT_EQ(rescan, r.rescanAfter) << r.text;
    }
}

TEST(TextRoutines, HtmlToText) {
    const struct { const char* html; bool entities, numeric, tabs, breaks; const char* breakText; const char* expected; } rows[] = {
        {"a&lt;b&GT;&amp;lt;", true, false, false, false, "", "a<b>&lt;"},
        {"&NBSP;x&quot;&apos;&amp;amp;", true, false, false, false, "", " x\"'&"},
        {"&#65;&#31;&#x41;&#233;z&#66", false, true, false, false, "", "A  \xe9z&#66"},
        {"&#38;#65;&#256;", false, true, false, false, "", "A "},
        {"a\tb\r\nc\nd", false, false, true, true, "<br>", "a  b<br>c<br>d"},
        {"a\r\nb", false, false, false, true, "\r\n", "a\r\r\nb"},
        {"&lt;\t&#65;\n", false, false, false, false, "", "&lt;\t&#65;\n"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(lib_HtmlToText(r.html, r.entities, r.numeric, r.tabs, "  ", r.breaks, r.breakText), r.expected)
            << r.html;
}

TEST(TaggedValues, MaxMinIfBlankAndTwips) {
    const TaggedValue one = 1.0, two = 2.0, zero = 0.0, x = std::string("x"), blank = std::string();
    EXPECT_EQ(lib_Max(one, two), two);
    EXPECT_EQ(lib_Min(one, two), one);
    EXPECT_EQ(lib_Max(two, x), x);  // a number sorts before a text
    EXPECT_EQ(lib_Max(TaggedValue(std::string("b")), TaggedValue(std::string("B"))), TaggedValue(std::string("b")));
    EXPECT_EQ(lib_Max(TaggedValue(Empty{}), zero), zero);  // a tie gives the second
    EXPECT_EQ(lib_Min(zero, TaggedValue(Empty{})), TaggedValue(Empty{}));
    EXPECT_EQ(lib_Min(TaggedValue(Null{}), one), TaggedValue(Null{}));
    EXPECT_EQ(lib_Max(one, TaggedValue(Null{})), TaggedValue(Null{}));
    for (const TaggedValue& v : {TaggedValue(Empty{}), TaggedValue(Null{}), blank}) EXPECT_EQ(lib_IfBlank(v, x), x);
    EXPECT_EQ(lib_IfBlank(zero, x), zero);
    EXPECT_EQ(lib_IfBlank(TaggedValue(std::string(" ")), x), TaggedValue(std::string(" ")));
    EXPECT_FLOAT_EQ(lib_CmToTwips(2.5f), 1417.5f);
}

TEST(Sleep, StepsOfAHundredMilliseconds) {
    fakes::FakeDesktop desktop;
    const struct { std::int32_t ms; bool doEvents; std::size_t events; int waits; } rows[] = {
        {99, true, 0, 0}, {-500, true, 0, 0}, {250, true, 2, 200}, {100, false, 0, 100}};
    for (const auto& r : rows) {
        desktop.calls.clear();
        const auto start = std::chrono::steady_clock::now();
        lib_Sleep(desktop, r.ms, r.doEvents);
        const auto waited = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(desktop.calls.size(), r.events) << r.ms;
        EXPECT_GE(waited, std::chrono::milliseconds(r.waits)) << r.ms;
        EXPECT_LT(waited, std::chrono::milliseconds(r.waits + 300)) << r.ms;
    }
}

TEST(SortArray, StableInsertionSortByTheFirstKeysKind) {
    std::vector<std::string> names = {"unused", "b", "A", "a", "C", "B"};
    lib_SortArray(names, 1);
    EXPECT_EQ(names, (std::vector<std::string>{"unused", "A", "a", "b", "B", "C"}));
    names = {"d", "c", "b", "a"};
    lib_SortArray(names, 0, 1, 2);
    EXPECT_EQ(names, (std::vector<std::string>{"d", "b", "c", "a"}));
    lib_SortArray(names, 2, 0);  // the first row raised to the lowest index
    EXPECT_EQ(names, (std::vector<std::string>{"d", "b", "a", "c"}));
    EXPECT_EQ(ErrorOf([&] { lib_SortArray(names, 0, 0, 4); }), kSubscriptOutOfRange);

    // A number first: the general comparison, numbers before texts, texts by their bytes.
    std::vector<TaggedValue> mixed = {10.0, std::string("b"), std::string("B"), 2.0};
    lib_SortArray(mixed, 0);
    EXPECT_EQ(mixed, (std::vector<TaggedValue>{2.0, 10.0, std::string("B"), std::string("b")}));

    // Only the columns up to the highest travel with their key.
    std::vector<std::vector<TaggedValue>> rows = {{2.0, std::string("two"), std::string("stays0")},
                                                  {1.0, std::string("one"), std::string("stays1")}};
    lib_SortArray(rows, 1, 0, 0);
    EXPECT_EQ(rows[0], (std::vector<TaggedValue>{1.0, std::string("one"), std::string("stays0")}));
    EXPECT_EQ(rows[1], (std::vector<TaggedValue>{2.0, std::string("two"), std::string("stays1")}));
}

TEST(NativeNames, Latin1AndUtf8) {
    EXPECT_EQ(NativePath("caf\xe9 \xff.txt").string(), "caf\xc3\xa9 \xc3\xbf.txt");
    const std::pair<const char*, const char*> rows[] = {
        {"caf\xc3\xa9", "caf\xe9"}, {"\xe2\x82\xac", "?"}, {"a\xff" "b", "a?b"}, {"\xc3", "?"}, {"\xc0\x80", "?"}};
    for (const auto& [utf8, latin1] : rows) EXPECT_EQ(Latin1Name(utf8), latin1) << utf8;
}

}  // namespace
}  // namespace ostrivane
