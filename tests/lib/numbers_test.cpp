#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

TEST(RoundTiesToEven, TiesGoToTheEvenNeighbour) {
    const std::pair<double, double> rows[] = {{88.5, 88}, {89.5, 90}, {0.5, 0},       {-0.5, 0},
                                              {-1.5, -2}, {-2.5, -2}, {2.4999, 2}, {2.5001, 3}, {-2.6, -3}};
    for (const auto& [in, out] : rows) EXPECT_EQ(RoundTiesToEven(in), out) << in;
    EXPECT_EQ(Int(2.9), 2);
    EXPECT_EQ(Int(-2.1), -3);  // Int floors
}

TEST(TextToInteger, ConvertsLikeTheRunTime) {
    const std::pair<const char*, std::int32_t> rows[] = {
        {"12", 12},     {"  -7  ", -7},  {"+5", 5},         {"2.5", 2},   {"3.5", 4},         {"-2.5", -2},
        {"1e3", 1000},  {"1.5E1", 15},   {"2D2", 200},      {".5", 0},    {"1.", 1},          {"&HFF", 255},
        {"&HFFFF", -1}, {"&O17", 15},    {"&H10000", 65536}, {"-0", 0},   {"-2147483648", -2147483647 - 1}};
    for (const auto& [text, value] : rows) EXPECT_EQ(TextToInt32(text), value) << text;
    for (const char* bad : {"", " ", "abc", "12abc", "1 2", "--1", "-", ".", "e5", "&H", "&HG", "1,000", "S", "\t"})
        EXPECT_EQ(ErrorOf([&] { TextToInt32(bad); }), kTypeMismatch) << '"' << bad << '"';
}

TEST(Numbers, WidthLimitsRaiseOverflowAfterRounding) {
    EXPECT_EQ(RoundToInt16(-32768.5), -32768);  // the tie to even stays inside
    EXPECT_EQ(TextToInt16("32767"), 32767);
    EXPECT_EQ(RoundToInt32(2147483647.0), 2147483647);
    EXPECT_EQ(Add16(32766, 1), 32767);
    EXPECT_EQ(Mul16(128, 255), 32640);
    EXPECT_EQ(Div16(-7, 2), -3);
    EXPECT_EQ(TextToInt32("1e-400"), 0);  // an underflow is zero
    const std::function<void()> overflows[] = {
        [] { RoundToInt16(32767.5); },     [] { RoundToInt16(-32769); },  [] { RoundToInt16(NAN); },
        [] { RoundToInt32(2147483647.5); }, [] { TextToInt16("32768"); }, [] { TextToInt16("-32769"); },
        [] { TextToInt32("2147483648"); }, [] { TextToInt32("1e400"); },  [] { Add16(32767, 1); },
        [] { Sub16(-32768, 1); },          [] { Mul16(129, 255); },       [] { Neg16(-32768); },
        [] { Div16(-32768, -1); },         [] { CheckedInt16(40000); },   [] { Add32(2147483647, 1); }};
    for (std::size_t i = 0; i < std::size(overflows); ++i) EXPECT_EQ(ErrorOf(overflows[i]), kOverflow) << "row " << i;
    EXPECT_EQ(ErrorOf([] { Div16(1, 0); }), kDivisionByZero);
}

TEST(Val, TakesTheLeadingNumber) {
    const std::pair<const char*, double> rows[] = {
        {"", 0},       {"abc", 0},  {"12abc", 12}, {"  42", 42},   {"1 2 3", 123},  {"-5x", -5}, {"3.75 px", 3.75},
        {"1e2", 100},  {"1e", 1},   {"&H1F", 31},  {"&Hzz", 0},    {"\t7", 7},      {"1.2.3", 1.2}, {"+8", 8}};
    for (const auto& [text, value] : rows) EXPECT_DOUBLE_EQ(Val(text), value) << text;
}

TEST(RuntimeError, SkipOnFailureSkipsOnlyRunTimeErrors) {
    int done = 0;
    EXPECT_FALSE(SkipOnFailure([&] { Raise(kOverflow); }));
    EXPECT_TRUE(SkipOnFailure([&] { ++done; }));
    EXPECT_EQ(done, 1);
    EXPECT_THROW(SkipOnFailure([] { throw std::logic_error("not a run-time error"); }), std::logic_error);
}

TEST(NumberToText, WritesDoublesAsTheRunTimeDoes) {
    const std::pair<double, const char*> rows[] = {
        {-0.0, "0"},         {12, "12"},          {-2.5, "-2.5"},     {0.1 + 0.2, "0.3"},  {2.0 / 3, "0.666666666666667"},
        {2147483648.0, "2147483648"}, {999999999999999.0, "999999999999999"}, {123456789012345.6, "123456789012346"},
        {1e15, "1E+15"},     {-1.5e16, "-1.5E+16"}, {1e100, "1E+100"}, {0.0001, "0.0001"}, {0.00001, "1E-05"},
        {1.5e-7, "1.5E-07"}};
    for (const auto& [in, out] : rows) EXPECT_EQ(NumberToText(in), out) << in;
    for (double d : {1919.5, -40.25, 1e20, 3e-9}) EXPECT_DOUBLE_EQ(Val(NumberToText(d)), d) << d;
}

}  // namespace
}  // namespace ostrivane
