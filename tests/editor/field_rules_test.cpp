#include <gtest/gtest.h>

#include <string>

#include "editor/field_rules.hpp"
#include "lib/errors.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

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

// "#13" and "#6": the rule raises Type mismatch or Overflow, as text that
// is no number does where it is compared.
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
        {opacity, "", ""},    {opacity, "0", "1"},   {opacity, "100", "100"}, {opacity, "101", "100"},
        {thick, "abc", "#13"}, {opacity, "S5", "#13"}, {len, "S5", "#13"}, {len, "12abc", "#13"},
        {thick, "1e400", "#6"}};
    for (const Row& r : rows) {
        std::string got;
        const int error = ErrorOf([&] { got = r.rule(r.in); });
        EXPECT_EQ(error != 0 ? std::string("#").append(std::to_string(error)) : got, r.out) << r.in;
    }
}

}  // namespace
}  // namespace ostrivane
