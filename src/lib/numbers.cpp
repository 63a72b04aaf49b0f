#include "lib/numbers.hpp"

#include <charconv>
#include <cmath>
#include <limits>

#include "lib/errors.hpp"

namespace ostrivane {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }
// Val skips these wherever they stand.
bool IsValSkip(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

int HexDigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// A hex or octal literal that fits 16 bits is a 16-bit two's complement value
// (&HFFFF is -1); a larger one is a 32-bit one.
double RadixLiteralValue(std::uint64_t raw) {
    if (raw <= 0xFFFFu) return static_cast<double>(static_cast<std::int16_t>(static_cast<std::uint16_t>(raw)));
    return static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(raw)));
}

struct RadixParse {
    bool ok = false;
    double value = 0;
    std::size_t end = 0;
};

// Reads "&H..." or "&O..." at text[pos]; digits must fit 32 bits.
RadixParse ParseRadixLiteral(std::string_view text, std::size_t pos, bool skip_blanks) {
    RadixParse r;
    if (pos + 1 >= text.size() || text[pos] != '&') return r;
    const char kind = text[pos + 1];
    int radix = 0;
    if (kind == 'h' || kind == 'H') radix = 16;
    if (kind == 'o' || kind == 'O') radix = 8;
    if (radix == 0) return r;
    std::uint64_t raw = 0;
    int digits = 0;
    std::size_t i = pos + 2;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (skip_blanks && IsValSkip(c)) continue;
        const int d = HexDigitValue(c);
        if (d < 0 || d >= radix) break;
        raw = raw * static_cast<unsigned>(radix) + static_cast<unsigned>(d);
        if (raw > 0xFFFFFFFFu) Raise(kOverflow);
        ++digits;
    }
    r.ok = digits > 0;
    r.value = RadixLiteralValue(raw);
    r.end = i;
    return r;
}

struct DecimalScan {
    std::string cleaned;  // sign, digits, '.', 'e', exponent sign and digits
    std::size_t end = 0;  // position after the last character taken
    bool has_mantissa_digit = false;
};

// Scans a decimal number from pos: [sign] digits [. digits] [E|D [sign] digits].
DecimalScan ScanDecimal(std::string_view text, std::size_t pos, bool skip_blanks) {
    DecimalScan s;
    std::size_t i = pos;
    auto skip = [&] {
        while (skip_blanks && i < text.size() && IsValSkip(text[i])) ++i;
    };
    skip();
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        if (text[i] == '-') s.cleaned += '-';
        ++i;
    }
    skip();
    // A run of digits, blanks in it skipped where Val skips them.
    auto take_digits = [&] {
        while (i < text.size()) {
            if (IsDigit(text[i])) {
                s.cleaned += text[i];
                s.has_mantissa_digit = true;
                ++i;
            } else if (skip_blanks && IsValSkip(text[i])) {
                ++i;
            } else {
                break;
            }
        }
        s.end = i;
    };
    take_digits();
    if (i < text.size() && text[i] == '.') {
        s.cleaned += '.';
        ++i;
        take_digits();
    }
    if (s.has_mantissa_digit && i < text.size() &&
        (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
        std::size_t j = i + 1;
        std::string exponent = "e";
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            exponent += text[j];
            ++j;
        }
        bool any = false;
        while (j < text.size() && IsDigit(text[j])) {
            exponent += text[j];
            any = true;
            ++j;
        }
        if (any) {
            s.cleaned += exponent;
            s.end = j;
        }
    }
    return s;
}

double CleanedToDouble(const std::string& cleaned) {
    std::string_view v = cleaned;
    const bool negative = !v.empty() && v.front() == '-';
    if (negative) v.remove_prefix(1);
    if (!v.empty() && v.front() == '.') {
        // from_chars wants a digit before the point
        std::string with_zero = "0" + std::string(v);
        double d = 0;
        auto res = std::from_chars(with_zero.data(), with_zero.data() + with_zero.size(), d);
        if (res.ec == std::errc::result_out_of_range) Raise(kOverflow);
        return negative ? -d : d;
    }
    double d = 0;
    auto res = std::from_chars(v.data(), v.data() + v.size(), d);
    if (res.ec == std::errc::result_out_of_range) {
        // an underflow is a plain zero; only a value too large overflows
        const auto e = v.find('e');
        if (e != std::string_view::npos && v.substr(e + 1).starts_with('-')) return 0.0;
        Raise(kOverflow);
    }
    if (std::isinf(d)) Raise(kOverflow);
    return negative ? -d : d;
}

}  // namespace

double RoundTiesToEven(double x) {
    const double lower = std::floor(x);
    const double diff = x - lower;
    if (diff < 0.5) return lower;
    if (diff > 0.5) return lower + 1.0;
    return std::fmod(lower, 2.0) == 0.0 ? lower : lower + 1.0;
}

std::int16_t RoundToInt16(double x) {
    if (std::isnan(x)) Raise(kOverflow);
    const double r = RoundTiesToEven(x);
    if (r < -32768.0 || r > 32767.0) Raise(kOverflow);
    return static_cast<std::int16_t>(r);
}

std::int32_t RoundToInt32(double x) {
    if (std::isnan(x)) Raise(kOverflow);
    const double r = RoundTiesToEven(x);
    if (r < -2147483648.0 || r > 2147483647.0) Raise(kOverflow);
    return static_cast<std::int32_t>(r);
}

double TextToNumber(std::string_view text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && IsBlank(text[begin])) ++begin;
    while (end > begin && IsBlank(text[end - 1])) --end;
    const std::string_view body = text.substr(begin, end - begin);
    if (body.empty()) Raise(kTypeMismatch);

    if (body.front() == '&') {
        const RadixParse r = ParseRadixLiteral(body, 0, false);
        if (!r.ok || r.end != body.size()) Raise(kTypeMismatch);
        return r.value;
    }
    const DecimalScan s = ScanDecimal(body, 0, false);
    if (!s.has_mantissa_digit || s.end != body.size()) Raise(kTypeMismatch);
    return CleanedToDouble(s.cleaned);
}

std::int16_t TextToInt16(std::string_view text) { return RoundToInt16(TextToNumber(text)); }
std::int32_t TextToInt32(std::string_view text) { return RoundToInt32(TextToNumber(text)); }

double Val(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && IsValSkip(text[i])) ++i;
    if (i < text.size() && text[i] == '&') {
        const RadixParse r = ParseRadixLiteral(text, i, true);
        return r.ok ? r.value : 0.0;
    }
    const DecimalScan s = ScanDecimal(text, i, true);
    if (!s.has_mantissa_digit) return 0.0;
    return CleanedToDouble(s.cleaned);
}

double Int(double x) { return std::floor(x); }

std::int16_t CheckedInt16(std::int64_t value) {
    if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max())
        Raise(kOverflow);
    return static_cast<std::int16_t>(value);
}

std::int32_t CheckedInt32(std::int64_t value) {
    if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
        Raise(kOverflow);
    return static_cast<std::int32_t>(value);
}

std::int16_t Add16(std::int16_t a, std::int16_t b) { return CheckedInt16(std::int64_t{a} + b); }
std::int16_t Sub16(std::int16_t a, std::int16_t b) { return CheckedInt16(std::int64_t{a} - b); }
std::int16_t Mul16(std::int16_t a, std::int16_t b) { return CheckedInt16(std::int64_t{a} * b); }
std::int16_t Neg16(std::int16_t a) { return CheckedInt16(-std::int64_t{a}); }

std::int16_t Div16(std::int16_t a, std::int16_t b) {
    if (b == 0) Raise(kDivisionByZero);
    return CheckedInt16(std::int64_t{a} / b);
}

std::int32_t Add32(std::int32_t a, std::int32_t b) { return CheckedInt32(std::int64_t{a} + b); }
std::int32_t Sub32(std::int32_t a, std::int32_t b) { return CheckedInt32(std::int64_t{a} - b); }
std::int32_t Mul32(std::int32_t a, std::int32_t b) { return CheckedInt32(std::int64_t{a} * b); }

std::string DecimalText(std::int64_t value) { return std::to_string(value); }

std::string NumberToText(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
    if (value == 0) return "0";  // also for -0
    // %G with 15 digits is the run time's own choice of form; to_chars keeps
    // it free of the locale's decimal point.
    char buffer[40];
    const auto res = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15);
    std::string text(buffer, res.ptr);
    for (char& c : text)
        if (c == 'e') c = 'E';
    return text;
}

}  // namespace ostrivane
