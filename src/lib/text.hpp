// 8-bit text as the system treats it: case of Latin-1 letters, comparison
// without regard to case, trimming of blanks, and the Like wildcard match.
#pragma once

#include <string>
#include <string_view>

namespace ostrivane {

char UpperChar(char c);
char LowerChar(char c);
std::string UCase(std::string_view text);
std::string LCase(std::string_view text);

bool EqualsNoCase(std::string_view a, std::string_view b);
// <0, 0, >0 as a sorts before, with, or after b, letters compared upper-cased.
int CompareNoCase(std::string_view a, std::string_view b);
// Position of what in text from start, without regard to case; npos if absent.
std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t start = 0);

// Every find text in text replaced, left to right, without looking again
// at what was put in; exact, case-sensitive. An empty find text changes nothing.
std::string ReplaceAll(std::string_view text, std::string_view find, std::string_view with);

// Trim removes spaces only, as the run time does; tabs stay.
std::string Trim(std::string_view text);
std::string LTrim(std::string_view text);
std::string RTrim(std::string_view text);

// The Like operator, comparing bytes as they are: ? one character, * any run,
// # one digit, [list] and [!list] with ranges a-z. A [ without its ] is an
// "Invalid pattern string" (93).
bool Like(std::string_view text, std::string_view pattern);

}  // namespace ostrivane
