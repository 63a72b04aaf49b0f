// The few decisions the Qt side makes on its own, kept free of Qt so that
// they can be tested headless: twips and pixels, colours, the message box's
// flags, which typed characters reach KeyPress, line ends of multi-line
// boxes, the virtual screen, and the run-time error text.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ostrivane::desktop {

inline constexpr int kTwipsPerPixel = 15;

// Nearest pixel; 15 is odd, so there is never a tie.
inline int TwipsToPixels(int twips) {
    const std::int64_t t = twips;
    const std::int64_t twice = 2 * t + kTwipsPerPixel;
    const std::int64_t d = 2 * kTwipsPerPixel;
    const std::int64_t q = twice >= 0 ? twice / d : -((-twice + d - 1) / d);  // floor
    return static_cast<int>(q);
}

// The system's input box is of one width whatever its prompt, which wraps.
inline constexpr int kInputBoxWidthPixels = 360;

inline int PixelsToTwips(int pixels) {
    const std::int64_t t = static_cast<std::int64_t>(pixels) * kTwipsPerPixel;
    return static_cast<int>(std::clamp<std::int64_t>(t, INT_MIN, INT_MAX));
}

struct Rgb {
    int red = 0;
    int green = 0;
    int blue = 0;
    bool operator==(const Rgb&) const = default;
};

// A colour of the core has red in the low byte; the high byte is ignored.
inline Rgb ColourToRgb(std::int32_t colour) {
    const auto c = static_cast<std::uint32_t>(colour);
    return {static_cast<int>(c & 0xFFu), static_cast<int>((c >> 8) & 0xFFu), static_cast<int>((c >> 16) & 0xFFu)};
}

inline std::int32_t RgbToColour(const Rgb& rgb) {
    const auto byte = [](int v) { return static_cast<std::uint32_t>(std::clamp(v, 0, 255)); };
    return static_cast<std::int32_t>(byte(rgb.red) | (byte(rgb.green) << 8) | (byte(rgb.blue) << 16));
}

// ---- The plain message box ----------------------------------------------

enum MsgBoxAnswer : int { kAnswerOk = 1, kAnswerCancel = 2, kAnswerAbort = 3, kAnswerRetry = 4, kAnswerIgnore = 5,
                          kAnswerYes = 6, kAnswerNo = 7 };
enum class MsgBoxIcon { None, Critical, Question, Exclamation, Information };

struct MsgBoxShape {
    std::vector<int> buttons;  // answers, left to right
    MsgBoxIcon icon = MsgBoxIcon::None;
    int defaultAnswer = kAnswerOk;
    int escapeAnswer = 0;  // 0: Esc and the close box do nothing
    bool operator==(const MsgBoxShape&) const = default;
};

// Flags as the system box reads them: the button set in the low three bits,
// the icon in 16..64, the default button in 256 steps (first when out of reach).
inline MsgBoxShape MapMsgBoxFlags(int flags) {
    MsgBoxShape shape;
    switch (flags & 7) {
        case 1: shape.buttons = {kAnswerOk, kAnswerCancel}; shape.escapeAnswer = kAnswerCancel; break;
        case 2: shape.buttons = {kAnswerAbort, kAnswerRetry, kAnswerIgnore}; break;
        case 3: shape.buttons = {kAnswerYes, kAnswerNo, kAnswerCancel}; shape.escapeAnswer = kAnswerCancel; break;
        case 4: shape.buttons = {kAnswerYes, kAnswerNo}; break;
        case 5: shape.buttons = {kAnswerRetry, kAnswerCancel}; shape.escapeAnswer = kAnswerCancel; break;
        default: shape.buttons = {kAnswerOk}; shape.escapeAnswer = kAnswerOk; break;
    }
    switch (flags & 0x70) {
        case 16: shape.icon = MsgBoxIcon::Critical; break;
        case 32: shape.icon = MsgBoxIcon::Question; break;
        case 48: shape.icon = MsgBoxIcon::Exclamation; break;
        case 64: shape.icon = MsgBoxIcon::Information; break;
        default: shape.icon = MsgBoxIcon::None; break;
    }
    const auto which = static_cast<std::size_t>((flags >> 8) & 3);
    shape.defaultAnswer = shape.buttons[which < shape.buttons.size() ? which : 0];
    return shape;
}

// ---- Typing ---------------------------------------------------------------

inline constexpr int kKeyToWidget = -1;  // not a KeyPress character: the widget handles it
inline constexpr int kKeyDropped = 0;

// What one typed character (a Unicode code point, as the keyboard gives it)
// hands to KeyPress. Tab and Delete never reach KeyPress; a character beyond
// Latin-1 cannot enter 8-bit text and is dropped.
inline int KeyPressCode(char32_t ch) {
    if (ch == 0 || ch == U'\t' || ch == 127) return kKeyToWidget;
    if (ch > 255) return kKeyDropped;
    return static_cast<int>(ch);
}

// A multi-line box of the core holds CR LF; the editor widget holds LF.
inline std::string ModelTextToEditor(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            out += '\n';
            if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

inline std::string EditorTextToModel(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    for (char c : text) {
        if (c == '\n') out += '\r';
        out += c;
    }
    return out;
}

// Tab stops of a multi-line box, given in dialog units (a quarter of the
// average character width): none gives a stop every 32 units, one value a
// stop every that many, more values the stops themselves. Positions in pixels.
struct TabLayout {
    double every = 0;            // a stop every so many pixels, when no list
    std::vector<double> stops;   // the stops themselves, ascending
    bool operator==(const TabLayout&) const = default;
};

inline TabLayout TabStopsInPixels(const std::vector<std::int32_t>& dialogUnits, double averageCharWidth) {
    const double unit = averageCharWidth / 4.0;
    TabLayout layout;
    std::vector<double> positive;
    for (std::int32_t v : dialogUnits)
        if (v > 0) positive.push_back(v * unit);
    if (positive.size() > 1) {
        std::sort(positive.begin(), positive.end());
        positive.erase(std::unique(positive.begin(), positive.end()), positive.end());
        layout.stops = positive;
    } else {
        layout.every = positive.empty() ? 32 * unit : positive.front();
    }
    return layout;
}

// ---- Screen -----------------------------------------------------------------

struct ScreenRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

// GetSystemMetrics of the virtual screen (76 left, 77 top, 78 width,
// 79 height): the bounding box of all screens; 0 for any other index.
inline std::int32_t VirtualScreenMetric(const std::vector<ScreenRect>& screens, int index) {
    if (screens.empty()) return 0;
    std::int64_t left = INT64_MAX, top = INT64_MAX, right = INT64_MIN, bottom = INT64_MIN;
    for (const ScreenRect& s : screens) {
        left = std::min<std::int64_t>(left, s.left);
        top = std::min<std::int64_t>(top, s.top);
        right = std::max<std::int64_t>(right, static_cast<std::int64_t>(s.left) + s.width);
        bottom = std::max<std::int64_t>(bottom, static_cast<std::int64_t>(s.top) + s.height);
    }
    std::int64_t v = 0;
    switch (index) {
        case 76: v = left; break;
        case 77: v = top; break;
        case 78: v = right - left; break;
        case 79: v = bottom - top; break;
        default: return 0;
    }
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, INT32_MIN, INT32_MAX));
}

// ---- Run-time errors --------------------------------------------------------

inline std::string RunTimeErrorBoxText(std::int32_t number, std::string_view description) {
    return "Run-time error '" + std::to_string(number) + "':\n\n" + std::string(description);
}

// The command line as one text: the arguments after the program's name,
// joined by blanks.
inline std::string JoinArguments(const std::vector<std::string>& arguments) {
    std::string out;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (i) out += ' ';
        out += arguments[i];
    }
    return out;
}

}  // namespace ostrivane::desktop
