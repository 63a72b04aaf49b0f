#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "lib/ini_file.hpp"

namespace ostrivane::ini {
namespace {

using namespace std::string_literals;

std::vector<std::string> Lines(std::string_view text) {
    std::vector<std::string> lines;
    LineCursor cursor(text);
    for (std::string_view line; cursor.Next(line);) lines.emplace_back(line);
    return lines;
}

TEST(IniText, AcceptsEveryLineEnd) {
    struct Row { std::string text; std::vector<std::string> lines; };
    const Row rows[] = {{"", {}},          {"a\r\n", {"a"}},          {"a\nb", {"a", "b"}},
                        {"a\rb\r", {"a", "b"}}, {"a\r\r\nb", {"a", "", "b"}}, {"a\n\rb", {"a", "", "b"}},
                        {"\n", {""}},      {"x\0y"s, {"x\0y"s}}};
    for (const Row& row : rows) EXPECT_EQ(Lines(row.text), row.lines) << row.text;
}

const std::string kEdited =
    "; by hand\ntop=level\n\n"
    "  [ Defaults ]  \n\tDataFormat = 1 \nbare\n[no close\n\n"
    "[Bench]\n1=400,300,-2,-2,65280,3,60,0,\nNotes=a\xff" "b\n1=shadowed\n\n\n"
    "[bench]\nHidden=1\n";

TEST(IniText, ReadsFirstSectionAndFirstKeyWithoutCase) {
    EXPECT_EQ(FindValue(kEdited, "DEFAULTS", "dataformat"), "1");
    EXPECT_EQ(FindValue(kEdited, " Bench ", "1"), "400,300,-2,-2,65280,3,60,0,");
    EXPECT_EQ(FindValue(kEdited, "bench", "Hidden"), std::nullopt);  // the second [bench] is never reached
    EXPECT_EQ(FindValue(kEdited, "", "top"), std::nullopt);  // lines before any header are in no section
    EXPECT_EQ(FindValue(kEdited, "Defaults", "bare"), std::nullopt);  // a line without "=" is no key
    EXPECT_EQ(ReadSection(kEdited, "defaults"), "DataFormat=1\0bare\0[no close\0"s);
    EXPECT_EQ(ReadSection(kEdited, "BENCH"), "1=400,300,-2,-2,65280,3,60,0,\0Notes=a\xff" "b\0001=shadowed\0"s);
    EXPECT_EQ(ReadSection("[E]\r\n\r\n[F]\r\nk=v", "e"), ""s);
    EXPECT_EQ(ReadSection(kEdited, "Missing"), std::nullopt);
}

TEST(IniText, KeyWriteReplacesInPlaceOrAppendsBehindTheLastLine) {
    const std::string head = "; by hand\r\ntop=level\r\n\r\n  [ Defaults ]  \r\n\tDataFormat = 1 \r\nbare\r\n[no close\r\n";
    const std::string tail = "\r\n[Bench]\r\n1=400,300,-2,-2,65280,3,60,0,\r\nNotes=a\xff" "b\r\n1=shadowed\r\n\r\n\r\n"
                             "[bench]\r\nHidden=1\r\n";
    EXPECT_EQ(SetValue(kEdited, "defaults", "PC", "HOST"), head + "PC=HOST\r\n" + tail);
    EXPECT_EQ(SetValue(kEdited, "DEFAULTS", "dataformat", "2"),
              "; by hand\r\ntop=level\r\n\r\n  [ Defaults ]  \r\nDataFormat=2\r\nbare\r\n[no close\r\n" + tail);
    EXPECT_EQ(SetValue("", " Defaults ", " Defaults ", "0,0,-2,-2,255,1,100,0,"),
              "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n");
    EXPECT_EQ(SetValue("[A]\nx=1\n\n", "B", "k", "v"), "[A]\r\nx=1\r\n\r\n[B]\r\nk=v\r\n");
    EXPECT_EQ(SetValue("[A]\nx=1", "a", "k", "v"), "[A]\r\nx=1\r\nk=v\r\n");
}

TEST(IniText, SectionWriteKeepsThePlaceAndRemoveTakesAllCopies) {
    const std::string text = "[A]\na=1\n\n;c\nb=2\n\n[B]\nx=1\n";
    EXPECT_EQ(ReplaceSection(text, "a", "n=1\0m=2\0\0"s), "[A]\r\nn=1\r\nm=2\r\n\r\n[B]\r\nx=1\r\n");
    EXPECT_EQ(ReplaceSection(text, "B", "y=2"), "[A]\r\na=1\r\n\r\n;c\r\nb=2\r\n\r\n[B]\r\ny=2\r\n");
    EXPECT_EQ(ReplaceSection("", "C", "k=1\0\0k=2\0"s), "[C]\r\nk=1\r\n");  // an empty entry ends the list
    EXPECT_EQ(ReplaceSection("[A]\n", "C", ""), "[A]\r\n[C]\r\n");
    EXPECT_EQ(RemoveSection(kEdited, "bench"), "; by hand\r\ntop=level\r\n\r\n  [ Defaults ]  \r\n"
                                               "\tDataFormat = 1 \r\nbare\r\n[no close\r\n\r\n");
    EXPECT_EQ(RemoveSection(kEdited, "Bench2"), std::nullopt);
}

// The platform's read rules: a byte-order mark at the start is skipped, a
// line without "=" is no key, a value loses a pair of quotes around it.
TEST(IniText, ByteOrderMarkBareLinesAndQuotes) {
    const std::string bom = "\xEF\xBB\xBF";
    const std::string text = bom + "[S]\nbare\nq1 = \"a b\" \nq2='x'\nq3=\"x'\nq4=\"\nq5=''\n";
    const std::pair<const char*, std::optional<std::string>> reads[] = {
        {"bare", std::nullopt}, {"q1", "a b"}, {"q2", "x"}, {"q3", "\"x'"}, {"q4", "\""}, {"q5", ""}};
    for (const auto& [key, value] : reads) EXPECT_EQ(FindValue(text, "s", key), value) << key;
    EXPECT_EQ(ReadSection(text, "S")->substr(0, 14), "bare\0q1=\"a b\"\0"s);
    EXPECT_EQ(SetValue(bom + "[S]\nbare\n", "S", "bare", "v"), bom + "[S]\r\nbare\r\nbare=v\r\n");
    EXPECT_EQ(ReplaceSection(bom + "[S]\nk=v\n", "s", "n=1"), bom + "[S]\r\nn=1\r\n");
    EXPECT_EQ(RemoveSection(bom + "[S]\nk=v\n[T]\n", "s"), bom + "[T]\r\n");
}

// Every line moves as it stands, also one that starts with a NUL; the old
// name goes first, so a change of case alone moves the section to the end.
TEST(IniText, RenameMovesEveryLineOfTheSection) {
    const std::string text = "[A]\n\0lead=1\n  x = 1 \n\n;c\n\n[B]\nk=v\n[a]\ny=2\n"s;
    const std::string lines = "\0lead=1\r\n  x = 1 \r\n\r\n;c\r\n"s;
    EXPECT_EQ(RenameSection(text, "a", "C"), "[B]\r\nk=v\r\n[C]\r\n" + lines);
    EXPECT_EQ(RenameSection(text, "A", "a"), "[B]\r\nk=v\r\n[a]\r\n" + lines);
    EXPECT_EQ(RenameSection(text, "A", "b"), "[B]\r\n" + lines);
    EXPECT_EQ(RenameSection("\xEF\xBB\xBF[B]\n", "Z", "Y"), "\xEF\xBB\xBF[B]\r\n[Y]\r\n");
}

TEST(IniText, GarbageKeepsTheInvariants) {
    const std::string alphabet = "[]=; \t\r\n\0\xff\x01" "ab"s;
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        std::string text(random() % 2048, ' ');
        for (char& c : text)
            c = random() % 2 ? alphabet[random() % alphabet.size()] : static_cast<char>(random() % 256);
        const std::string section = "Fuzz" + std::to_string(seed);
        const std::string value = "v\xff" + std::to_string(random());
        std::string before;  // the garbage as any edit writes it back
        for (const std::string& line : Lines(text)) before += line + "\r\n";

        const std::string written = SetValue(text, section, "Key", value);
        EXPECT_EQ(written, before + "[" + section + "]\r\nKey=" + value + "\r\n");
        EXPECT_EQ(FindValue(written, section, "KEY"), value);
        const std::string replaced = ReplaceSection(written, section, "a=1\0b=2\0\0"s);
        EXPECT_EQ(ReadSection(replaced, section), "a=1\0b=2\0"s);
        EXPECT_EQ(RemoveSection(replaced, section), before);
    }
}

}  // namespace
}  // namespace ostrivane::ini
