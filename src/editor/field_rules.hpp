// The rules of the editing fields as pure functions of text, so that the
// main form and the options dialog share them: which keys a field takes,
// and how a value is corrected when the field is left.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ostrivane {

// The smaller and the greater of two optional numbers; absent when either
// is. On a tie both give b.
std::optional<double> lib_Min(std::optional<double> a, std::optional<double> b);
std::optional<double> lib_Max(std::optional<double> a, std::optional<double> b);

// Copy, backspace, paste and cut: they pass every filter.
bool IsClipboardOrEditKey(int key);

// Digits only: the key itself, or 0 to drop it.
int FilterDigitKey(int key);

// Digits or "S": an "S" in either case becomes 83 ("S") when it would stand
// alone, that is when the field is empty or all of its text is selected;
// otherwise it is dropped.
int FilterLengthKey(int key, bool fieldEmpty, bool allTextSelected);
// The main form's length fields go one further: while the text is "S" in
// either case and not all selected, a digit is dropped too, so that "S"
// never leaves them with text that is no number. The options dialog keeps
// the plain rule above, where "S1" can be typed.
int FilterMainLengthKey(int key, std::string_view text, bool allTextSelected);

// Corrections on leaving a field. A blank text stays blank. The ones that
// compare the text as a number raise Type mismatch (13) for text that is no
// number, as a paste can leave.

// lib_Min(Val(text), extent): no lower bound.
std::string CorrectPosition(std::string_view text, std::int32_t extent);
// "S" in either case stays; below 1 gives "1"; else lib_Min(Val(text), extent).
std::string CorrectLength(std::string_view text, std::int32_t extent);
// Below 1 gives "1", above 999 "999", an even value goes one down.
std::string CorrectThickness(std::string_view text);
// Below 1 gives "1", above 100 "100".
std::string CorrectOpacity(std::string_view text);

}  // namespace ostrivane
