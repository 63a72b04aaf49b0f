// Numbers as the system's run time treats them: text conversions, rounding
// with ties to even, and 16-bit arithmetic that overflows with an error.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ostrivane {

// Nearest integer, a tie to the even neighbour; independent of the FPU mode.
double RoundTiesToEven(double x);

// A double rounded ties-to-even into 16 or 32 bits; Overflow (6) outside.
std::int16_t RoundToInt16(double x);
std::int32_t RoundToInt32(double x);

// The numeric value of a text as the run time's conversion reads it: blanks
// around, a sign, digits with a fraction and an exponent, or &H/&O forms.
// Type mismatch (13) for anything else, the empty text included.
double TextToNumber(std::string_view text);

// Text to integer: the number of TextToNumber rounded ties-to-even, with
// Overflow (6) outside the 16- or 32-bit range.
std::int16_t TextToInt16(std::string_view text);
std::int32_t TextToInt32(std::string_view text);

// The number at the start of the text, ignoring what follows; 0 when none.
double Val(std::string_view text);

// Rounds toward minus infinity.
double Int(double x);

// A value narrowed to 16 bits; Overflow (6) when it does not fit.
std::int16_t CheckedInt16(std::int64_t value);
std::int32_t CheckedInt32(std::int64_t value);

// 16-bit arithmetic; Overflow (6) when the result leaves the range.
std::int16_t Add16(std::int16_t a, std::int16_t b);
std::int16_t Sub16(std::int16_t a, std::int16_t b);
std::int16_t Mul16(std::int16_t a, std::int16_t b);
std::int16_t Neg16(std::int16_t a);
// Integer division truncating toward zero; Division by zero (11).
std::int16_t Div16(std::int16_t a, std::int16_t b);

// The same for 32-bit cells.
std::int32_t Add32(std::int32_t a, std::int32_t b);
std::int32_t Sub32(std::int32_t a, std::int32_t b);
std::int32_t Mul32(std::int32_t a, std::int32_t b);

// Plain decimal text of an integer.
std::string DecimalText(std::int64_t value);

// A double as the run time writes it into text: integral values as plain
// integers, fractions with up to 15 significant digits and no trailing zeros,
// exponent form ("1E+15", "1.5E-05") below 1E-4 and from 1E+15 on.
std::string NumberToText(double value);

}  // namespace ostrivane
