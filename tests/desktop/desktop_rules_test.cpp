#include "desktop/desktop_rules.hpp"

#include <gtest/gtest.h>

#include <climits>

namespace ostrivane::desktop {
namespace {

TEST(DesktopTwips, ToPixelsRoundsToNearestAndBack) {
    struct Case { int twips, pixels; };
    const Case cases[] = {
        {0, 0},       {7, 0},     {8, 1},       {15, 1},      {22, 1},     {23, 2},
        {1000, 67},   {7155, 477}, {255, 17},   {510, 34},    {-7, 0},     {-8, -1},
        {-15, -1},    {-1000, -67}, {INT_MAX, 143165576},    {INT_MIN, -143165577},
    };
    for (const Case& c : cases) EXPECT_EQ(TwipsToPixels(c.twips), c.pixels) << c.twips;
    EXPECT_EQ(PixelsToTwips(67), 1005);
    EXPECT_EQ(PixelsToTwips(-2), -30);
    EXPECT_EQ(PixelsToTwips(INT_MAX), INT_MAX);  // clamped, not wrapped
    EXPECT_EQ(PixelsToTwips(INT_MIN), INT_MIN);
    for (int px : {0, 1, 66, 477, 1919, -300}) EXPECT_EQ(TwipsToPixels(PixelsToTwips(px)), px);
}

TEST(DesktopColour, RedIsTheLowByte) {
    struct Case { std::int32_t colour; Rgb rgb; };
    const Case cases[] = {
        {255, {255, 0, 0}},
        {0xFF00, {0, 255, 0}},
        {0xFF0000, {0, 0, 255}},
        {16777215, {255, 255, 255}},
        {0x123456, {0x56, 0x34, 0x12}},
        {static_cast<std::int32_t>(0xFF123456u), {0x56, 0x34, 0x12}},  // the high byte is no colour
        {-1, {255, 255, 255}},
    };
    for (const Case& c : cases) EXPECT_EQ(ColourToRgb(c.colour), c.rgb) << c.colour;
    EXPECT_EQ(RgbToColour({0x56, 0x34, 0x12}), 0x123456);
    EXPECT_EQ(RgbToColour({300, -5, 255}), 0xFF00FF);  // out-of-range parts are clamped
}

TEST(DesktopMsgBox, FlagsGiveButtonsIconDefaultAndEscape) {
    struct Case { int flags; MsgBoxShape shape; };
    const Case cases[] = {
        {0, {{kAnswerOk}, MsgBoxIcon::None, kAnswerOk, kAnswerOk}},
        {64, {{kAnswerOk}, MsgBoxIcon::Information, kAnswerOk, kAnswerOk}},
        {16, {{kAnswerOk}, MsgBoxIcon::Critical, kAnswerOk, kAnswerOk}},
        {48, {{kAnswerOk}, MsgBoxIcon::Exclamation, kAnswerOk, kAnswerOk}},
        {1, {{kAnswerOk, kAnswerCancel}, MsgBoxIcon::None, kAnswerOk, kAnswerCancel}},
        {2, {{kAnswerAbort, kAnswerRetry, kAnswerIgnore}, MsgBoxIcon::None, kAnswerAbort, 0}},
        {3, {{kAnswerYes, kAnswerNo, kAnswerCancel}, MsgBoxIcon::None, kAnswerYes, kAnswerCancel}},
        {35, {{kAnswerYes, kAnswerNo, kAnswerCancel}, MsgBoxIcon::Question, kAnswerYes, kAnswerCancel}},
        {36, {{kAnswerYes, kAnswerNo}, MsgBoxIcon::Question, kAnswerYes, 0}},
        {292, {{kAnswerYes, kAnswerNo}, MsgBoxIcon::Question, kAnswerNo, 0}},
        {3 + 512, {{kAnswerYes, kAnswerNo, kAnswerCancel}, MsgBoxIcon::None, kAnswerCancel, kAnswerCancel}},
        {4 + 512, {{kAnswerYes, kAnswerNo}, MsgBoxIcon::None, kAnswerYes, 0}},  // no third button: the first
        {0 + 256, {{kAnswerOk}, MsgBoxIcon::None, kAnswerOk, kAnswerOk}},
        {5 + 48, {{kAnswerRetry, kAnswerCancel}, MsgBoxIcon::Exclamation, kAnswerRetry, kAnswerCancel}},
        {6, {{kAnswerOk}, MsgBoxIcon::None, kAnswerOk, kAnswerOk}},  // no such set: OK only
        {80, {{kAnswerOk}, MsgBoxIcon::None, kAnswerOk, kAnswerOk}},  // 16 + 64 is no icon
    };
    for (const Case& c : cases) EXPECT_EQ(MapMsgBoxFlags(c.flags), c.shape) << c.flags;
}

TEST(DesktopTyping, WhichCharactersReachKeyPress) {
    struct Case { char32_t ch; int code; };
    const Case cases[] = {
        {U'a', 'a'},        {U'7', '7'},        {U' ', 32},        {U'\b', 8},      {U'\r', 13},
        {U'\x1b', 27},      {U'\x03', 3},       {U'\x16', 22},     {U'\xe9', 0xE9}, {U'\xff', 255},
        {U'\t', kKeyToWidget}, {U'\x7f', kKeyToWidget}, {0, kKeyToWidget},
        {U'\u20ac', kKeyDropped}, {U'\U0001F600', kKeyDropped},
    };
    for (const Case& c : cases) EXPECT_EQ(KeyPressCode(c.ch), c.code) << static_cast<unsigned>(c.ch);
}

TEST(DesktopTyping, MultiLineTextKeepsCrLfInTheModel) {
    EXPECT_EQ(ModelTextToEditor("a\r\nb"), "a\nb");
    EXPECT_EQ(ModelTextToEditor("a\rb\nc\r\n"), "a\nb\nc\n");
    EXPECT_EQ(ModelTextToEditor("\r\n\r\n"), "\n\n");
    EXPECT_EQ(EditorTextToModel("a\nb\n"), "a\r\nb\r\n");
    EXPECT_EQ(EditorTextToModel(""), "");
    for (const char* text : {"one\r\ntwo", "", "x\r\n\r\ny", "\xff\xe9"})
        EXPECT_EQ(EditorTextToModel(ModelTextToEditor(text)), text);
}

TEST(DesktopTyping, TabStopsFromDialogUnits) {
    // An average character of 8 pixels: a dialog unit is 2 pixels.
    EXPECT_EQ(TabStopsInPixels({}, 8.0), (TabLayout{64.0, {}}));
    EXPECT_EQ(TabStopsInPixels({10}, 8.0), (TabLayout{20.0, {}}));
    EXPECT_EQ(TabStopsInPixels({40, 10, 40, 25}, 8.0), (TabLayout{0, {20.0, 50.0, 80.0}}));
    // Stops at or before the left edge mean nothing.
    EXPECT_EQ(TabStopsInPixels({0, -5}, 8.0), (TabLayout{64.0, {}}));
    EXPECT_EQ(TabStopsInPixels({-5, 12}, 8.0), (TabLayout{24.0, {}}));
}

TEST(DesktopScreen, VirtualScreenIsTheBoundingBox) {
    const std::vector<ScreenRect> one = {{0, 0, 1920, 1080}};
    // A second monitor left of and above the primary one.
    const std::vector<ScreenRect> two = {{0, 0, 1920, 1080}, {-1280, -200, 1280, 1024}};
    for (int index : {76, 77, 78, 79, 0}) {
        const int want1[] = {0, 0, 1920, 1080}, want2[] = {-1280, -200, 3200, 1280};
        EXPECT_EQ(VirtualScreenMetric(one, index), index ? want1[index - 76] : 0) << index;
        EXPECT_EQ(VirtualScreenMetric(two, index), index ? want2[index - 76] : 0) << index;
    }
    EXPECT_EQ(VirtualScreenMetric({}, 78), 0);
}

TEST(DesktopText, CommandLineJoinsArgumentsWithBlanks) {
    EXPECT_EQ(JoinArguments({}), "");
    EXPECT_EQ(JoinArguments({"Bench"}), "Bench");
    EXPECT_EQ(JoinArguments({"two", "words"}), "two words");
    EXPECT_EQ(JoinArguments({"\"Quoted", "Name\""}), "\"Quoted Name\"");
    EXPECT_EQ(JoinArguments({"", "x"}), " x");
}

}  // namespace
}  // namespace ostrivane::desktop
