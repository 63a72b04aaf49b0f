// The library's own message box, frmMsgBox, and the entries in front of it:
// it sizes itself to the text, can count down and close by itself, strips a
// trailing reference block, and offers copy and print.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "lib/window_helpers.hpp"  // BusyState, lib_SetBusy: the box clears the hourglass while it is up
#include "platform/desktop.hpp"

namespace ostrivane {

// The request handed to the form: type digit, four characters of seconds,
// then the message.
extern std::string MessageText;
// The answer of a Yes/No box; also the default button's when the countdown ends it.
extern bool MessageAnswer;

// The request's seconds as they stand in MessageText: the last four
// characters of the number, right-aligned and blank filled.
std::string SecondsField(std::int16_t seconds);

// Shows one box, or two when the message has 1250 characters or more.
void lib_ShowMessage(Desktop& desktop, std::string_view typeText, std::string_view message, std::int16_t seconds,
                     std::string_view tabStops);
// A beep, then a box with the critical sign.
void lib_ShowCritical(Desktop& desktop, std::string_view message, std::int16_t seconds);
// A beep, then a box with the exclamation sign.
void lib_ShowWarning(Desktop& desktop, std::string_view message, std::int16_t seconds);
// No beep, a box with the information sign.
void lib_ShowInfo(Desktop& desktop, std::string_view message, std::int16_t seconds);

// The text without a trailing reference block ("Failed@4711 @" -> "Failed").
std::string TrimMessageTail(std::string_view text);

struct MessageLayout {
    std::string text;      // line ends made CR LF, "@" as a line break
    std::int16_t lines;    // the estimated line count that sizes the form
};
// W is the width of the text box in twips / 80, as a 16-bit integer.
MessageLayout LayoutMessageText(std::string_view text, std::int16_t charsPerLine);

}  // namespace ostrivane
