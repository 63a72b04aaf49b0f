#include "dialogs/message_box.hpp"

#include "dialogs/msgbox_form.hpp"
#include "lib/numbers.hpp"

namespace ostrivane {

std::string MessageText;
bool MessageAnswer = false;

namespace {

// Messages from this length on are shown in two boxes.
constexpr std::size_t kSplitLength = 1250;
constexpr std::size_t kDefaultCut = 1240;
constexpr std::size_t kLastBreakSearched = 990;
constexpr char kContinued[] = "...(contd)";

bool IsBreak(char c) { return c == ' ' || c == '\r' || c == '\n'; }

bool IsTailChar(char c) { return (c >= '0' && c <= '9') || c == ' ' || c == '@' || c == '\r' || c == '\n'; }

void ShowOneBox(Desktop& desktop, std::string_view typeText, std::string_view message, std::int16_t seconds,
                std::string_view tabStops) {
    MessageText = std::string(typeText.substr(0, 1)) + SecondsField(seconds) + std::string(message);
    MsgBoxForm box(desktop);
    box.Form_Load();
    if (!tabStops.empty()) SetMessageTabStops(box, tabStops);
    desktop.ShowModal(box);
    // Closed some other way than by its own buttons: it goes all the same.
    box.Unload();
}

}  // namespace

std::string SecondsField(std::int16_t seconds) {
    const std::string padded = "    " + DecimalText(seconds);
    return padded.substr(padded.size() - 4);
}

void lib_ShowMessage(Desktop& desktop, std::string_view typeText, std::string_view message, std::int16_t seconds,
                     std::string_view tabStops) {
    // Bringing back an iconic main window first is the desktop's business:
    // a modal box there always stands in front of the program's windows.
    if (message.size() < kSplitLength) {
        ShowOneBox(desktop, typeText, message, seconds, tabStops);
        return;
    }
    std::size_t cut = kDefaultCut;
    for (std::size_t i = kLastBreakSearched; i >= 1; --i) {
        if (IsBreak(message[i - 1])) {
            cut = i;
            break;
        }
    }
    ShowOneBox(desktop, typeText, std::string(message.substr(0, cut)) + kContinued, seconds, tabStops);
    ShowOneBox(desktop, typeText, message.substr(cut), seconds, tabStops);
}

void lib_ShowCritical(Desktop& desktop, std::string_view message, std::int16_t seconds) {
    desktop.Beep();
    lib_ShowMessage(desktop, "1", message, seconds, {});
}

void lib_ShowWarning(Desktop& desktop, std::string_view message, std::int16_t seconds) {
    desktop.Beep();
    lib_ShowMessage(desktop, "2", message, seconds, {});
}

void lib_ShowInfo(Desktop& desktop, std::string_view message, std::int16_t seconds) {
    lib_ShowMessage(desktop, "3", message, seconds, {});
}

std::string TrimMessageTail(std::string_view text) {
    std::size_t i = text.size();
    while (i > 0 && IsTailChar(text[i - 1])) --i;
    // i is now the 1-based position of the last character that is no part of a tail.
    if (i == 0 || i == text.size()) return std::string(text);
    const std::size_t at = text.find('@', i - 1);
    if (at == std::string_view::npos) return std::string(text);
    return std::string(text.substr(0, at));
}

MessageLayout LayoutMessageText(std::string_view text, std::int16_t charsPerLine) {
    MessageLayout out{{}, 1};
    out.text.reserve(text.size() + text.size() / 8);
    std::int16_t column = 0;
    char previous = '\0';
    for (const char c : text) {
        if (c == '\r') {
            out.text += c;
            out.lines = Add16(out.lines, 1);
        } else if (c == '\n' && previous == '\r') {
            out.text += c;
        } else if (c == '\n' || c == '@') {
            out.text += "\r\n";
            out.lines = Add16(out.lines, 1);
        } else {
            out.text += c;
            column = Add16(column, 1);
            if (column > charsPerLine) {
                out.lines = Add16(out.lines, 1);
                column = 1;
            }
        }
        previous = c;
    }
    return out;
}

}  // namespace ostrivane
