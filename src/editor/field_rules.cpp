#include "editor/field_rules.hpp"

#include "lib/numbers.hpp"
#include "lib/text.hpp"

namespace ostrivane {

std::optional<double> lib_Min(std::optional<double> a, std::optional<double> b) {
    if (!a || !b) return std::nullopt;
    return *a < *b ? a : b;
}

std::optional<double> lib_Max(std::optional<double> a, std::optional<double> b) {
    if (!a || !b) return std::nullopt;
    return *a > *b ? a : b;
}

bool IsClipboardOrEditKey(int key) { return key == 3 || key == 8 || key == 22 || key == 24; }

int FilterDigitKey(int key) {
    if (IsClipboardOrEditKey(key)) return key;
    if (key >= '0' && key <= '9') return key;
    return 0;
}

int FilterLengthKey(int key, bool fieldEmpty, bool allTextSelected) {
    if (IsClipboardOrEditKey(key)) return key;
    if (key == 'S' || key == 's') return fieldEmpty || allTextSelected ? 'S' : 0;
    return FilterDigitKey(key);
}

int FilterMainLengthKey(int key, std::string_view text, bool allTextSelected) {
    key = FilterLengthKey(key, text.empty(), allTextSelected);
    if (!allTextSelected && UCase(text) == "S" && key >= '0' && key <= '9') return 0;
    return key;
}

std::string CorrectPosition(std::string_view text, std::int32_t extent) {
    if (text.empty()) return {};
    return NumberToText(*lib_Min(Val(text), extent));
}

std::string CorrectLength(std::string_view text, std::int32_t extent) {
    if (text.empty()) return {};
    if (UCase(text) == "S") return std::string(text);
    if (TextToNumber(text) < 1) return "1";
    return NumberToText(*lib_Min(Val(text), extent));
}

std::string CorrectThickness(std::string_view text) {
    if (text.empty()) return {};
    std::string result(text);
    // Each test reads the text as it stands after the one before.
    if (TextToNumber(result) < 1) result = "1";
    if (TextToNumber(result) > 999) result = "999";
    // Evenness as the run time's Mod sees it: of the value rounded to an integer.
    const double value = TextToNumber(result);
    if (static_cast<std::int64_t>(RoundTiesToEven(value)) % 2 == 0) result = NumberToText(value - 1);
    return result;
}

std::string CorrectOpacity(std::string_view text) {
    if (text.empty()) return {};
    std::string result(text);
    if (TextToNumber(result) < 1) result = "1";
    if (TextToNumber(result) > 100) result = "100";
    return result;
}

}  // namespace ostrivane
