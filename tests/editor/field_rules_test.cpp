#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "editor/field_rules.hpp"
#include "lib/errors.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

TEST(FieldRules, MinAndMaxOfOptionalNumbers) {
    EXPECT_EQ(lib_Min(5, 3), std::optional<double>(3));
    EXPECT_EQ(lib_Max(-1, -7), std::optional<double>(-1));
    EXPECT_EQ(lib_Min(std::nullopt, 5), std::nullopt);
    EXPECT_EQ(lib_Max(5, std::nullopt), std::nullopt);
}

TEST(FieldRules, KeyFilters) {
    // key, field empty, all selected, digits-only result, digits-or-S result
    struct Row { int key; bool empty; bool all; int digit; int length; };
    const Row rows[] = {
        {'0', false, false, '0', '0'}, {'9', false, false, '9', '9'}, {3, false, false, 3, 3},   {8, false, false, 8, 8},
        {22, false, false, 22, 22},    {24, false, false, 24, 24},    {'s', true, false, 0, 'S'}, {'S', false, true, 0, 'S'},
        {'s', false, false, 0, 0},     {'-', true, true, 0, 0},       {'.', true, true, 0, 0},    {13, true, true, 0, 0},
        {'0' + 256, true, true, 0, 0}, {-1, true, true, 0, 0}};
    for (const Row& r : rows) {
        EXPECT_EQ(FilterDigitKey(r.key), r.digit) << r.key;
        EXPECT_EQ(FilterLengthKey(r.key, r.empty, r.all), r.length) << r.key << ' ' << r.empty << r.all;
    }
}

TEST(FieldRules, Corrections) {
    struct Row { std::string (*rule)(std::string_view); const char* in; const char* out; };
    const auto pos = [](std::string_view t) { return CorrectPosition(t, 1920); };
    const auto len = [](std::string_view t) { return CorrectLength(t, 1080); };
    const auto thick = CorrectThickness;
    const auto opacity = CorrectOpacity;
    const Row rows[] = {
        {pos, "", ""},        {pos, "1920", "1920"}, {pos, "1921", "1920"}, {pos, "12abc", "12"},  {pos, "abc", "0"},
        {pos, "-40", "-40"},  {pos, "7.5", "7.5"},   {pos, "1e99", "1920"}, {len, "", ""},         {len, "S", "S"},
        {len, "s", "s"},      {len, "0", "1"},       {len, "0.5", "1"},     {len, "-3", "1"},      {len, "1080", "1080"},
        {len, "1081", "1080"}, {thick, "", ""},      {thick, "0", "1"},     {thick, "2", "1"},     {thick, "3", "3"},
        {thick, "998", "997"}, {thick, "999", "999"}, {thick, "1000", "999"}, {thick, "007", "007"},
        {thick, "2.5", "1.5"},  // evenness of a fraction is that of its ties-to-even rounding
        {opacity, "", ""},    {opacity, "0", "1"},   {opacity, "100", "100"}, {opacity, "101", "100"}};
    for (const Row& r : rows) EXPECT_EQ(r.rule(r.in), r.out) << r.in;
}

TEST(FieldRules, TextThatIsNoNumberIsATypeMismatchWhereItIsCompared) {
    for (const char* bad : {"abc", "S5", "12abc"}) {
        EXPECT_EQ(ErrorOf([&] { CorrectThickness(bad); }), kTypeMismatch) << bad;
        EXPECT_EQ(ErrorOf([&] { CorrectOpacity(bad); }), kTypeMismatch) << bad;
        EXPECT_EQ(ErrorOf([&] { CorrectLength(bad, 1920); }), kTypeMismatch) << bad;
    }
    EXPECT_EQ(ErrorOf([] { CorrectThickness("1e400"); }), kOverflow);
}

}  // namespace
}  // namespace ostrivane
