#include <gtest/gtest.h>

#include "support/run_time_error.hpp"

#include <cmath>

#include "lib/errors.hpp"
#include "lib/numbers.hpp"

namespace ostrivane {
namespace {


TEST(RoundTiesToEven, TiesGoToTheEvenNeighbour) {
    struct Row { double in; double out; };
    const Row rows[] = {{88.5, 88}, {89.5, 90}, {94.5, 94}, {95.5, 96}, {0.5, 0}, {1.5, 2},
                        {-0.5, 0}, {-1.5, -2}, {-2.5, -2}, {2.4999, 2}, {2.5001, 3}, {-2.6, -3}};
    for (const Row& r : rows) EXPECT_EQ(RoundTiesToEven(r.in), r.out) << r.in;
}

TEST(RoundToInt16, RangeIsCheckedAfterRounding) {
    EXPECT_EQ(RoundToInt16(32767.4), 32767);
    EXPECT_EQ(RoundToInt16(-32768.5), -32768);  // tie to even stays inside
    EXPECT_EQ(ErrorOf([] { RoundToInt16(32767.5); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { RoundToInt16(-32769); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { RoundToInt16(NAN); }), kOverflow);
    EXPECT_EQ(RoundToInt32(2147483647.0), 2147483647);
    EXPECT_EQ(ErrorOf([] { RoundToInt32(2147483647.5); }), kOverflow);
}

TEST(TextToInteger, ConvertsLikeTheRunTime) {
    struct Row { const char* text; std::int32_t value; };
    const Row rows[] = {
        {"0", 0}, {"12", 12}, {"  -7  ", -7}, {"+5", 5}, {"2.5", 2}, {"3.5", 4}, {"-2.5", -2},
        {"1e3", 1000}, {"1.5E1", 15}, {"2D2", 200}, {".5", 0}, {"1.", 1}, {"&HFF", 255},
        {"&HFFFF", -1}, {"&H10000", 65536}, {"&O17", 15}, {"007", 7}, {"-0", 0},
        {"16777215", 16777215}, {"-2147483648", -2147483647 - 1},
    };
    for (const Row& r : rows) EXPECT_EQ(TextToInt32(r.text), r.value) << r.text;
}

TEST(TextToInteger, RejectsTextThatIsNoNumber) {
    const char* bad[] = {"", " ", "abc", "12abc", "1 2", "--1", "-", ".", "e5", "&H", "&HG", "1,000", "S", "\t"};
    for (const char* t : bad) EXPECT_EQ(ErrorOf([&] { TextToInt32(t); }), kTypeMismatch) << '"' << t << '"';
}

TEST(TextToInteger, OverflowsOutsideItsWidth) {
    EXPECT_EQ(TextToInt16("32767"), 32767);
    EXPECT_EQ(ErrorOf([] { TextToInt16("32768"); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { TextToInt16("-32769"); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { TextToInt32("2147483648"); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { TextToInt32("1e400"); }), kOverflow);
    EXPECT_EQ(TextToInt32("1e-400"), 0);
}

TEST(Val, TakesTheLeadingNumber) {
    struct Row { const char* text; double value; };
    const Row rows[] = {
        {"", 0}, {"abc", 0}, {"12abc", 12}, {"  42", 42}, {"1 2 3", 123}, {"-5x", -5},
        {"3.75 px", 3.75}, {"1e2", 100}, {"1e", 1}, {"&H1F", 31}, {"&Hzz", 0}, {"-", 0},
        {"\t7", 7}, {"1.2.3", 1.2}, {"S", 0}, {"+8", 8},
    };
    for (const Row& r : rows) EXPECT_DOUBLE_EQ(Val(r.text), r.value) << r.text;
}

TEST(Int, RoundsTowardMinusInfinity) {
    EXPECT_EQ(Int(2.9), 2);
    EXPECT_EQ(Int(-2.1), -3);
    EXPECT_EQ(Int(-2.0), -2);
}

TEST(Checked16, OverflowsAt32767) {
    EXPECT_EQ(Add16(32766, 1), 32767);
    EXPECT_EQ(ErrorOf([] { Add16(32767, 1); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { Sub16(-32768, 1); }), kOverflow);
    EXPECT_EQ(Mul16(128, 255), 32640);
    EXPECT_EQ(ErrorOf([] { Mul16(129, 255); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { Neg16(-32768); }), kOverflow);
    EXPECT_EQ(Div16(-7, 2), -3);
    EXPECT_EQ(ErrorOf([] { Div16(1, 0); }), kDivisionByZero);
    EXPECT_EQ(ErrorOf([] { Div16(-32768, -1); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { CheckedInt16(40000); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { Add32(2147483647, 1); }), kOverflow);
}

TEST(SkipOnFailure, SkipsOnlyTheFailingStep) {
    int done = 0;
    EXPECT_FALSE(SkipOnFailure([&] { Raise(kOverflow); }));
    EXPECT_TRUE(SkipOnFailure([&] { ++done; }));
    EXPECT_EQ(done, 1);
    EXPECT_THROW(SkipOnFailure([] { throw std::logic_error("not a run-time error"); }), std::logic_error);
}

TEST(RuntimeError, CarriesNumberAndStandardText) {
    const RuntimeError e(kSubscriptOutOfRange);
    EXPECT_EQ(e.number(), 9);
    EXPECT_EQ(e.description(), "Subscript out of range");
    EXPECT_EQ(RuntimeErrorText(13), "Type mismatch");
    EXPECT_EQ(RuntimeErrorText(6), "Overflow");
    EXPECT_EQ(RuntimeErrorText(5), "Invalid procedure call or argument");
}

TEST(NumberToText, WritesDoublesAsTheRunTimeDoes) {
    struct Row { double in; const char* out; };
    const Row rows[] = {
        {0, "0"}, {-0.0, "0"}, {12, "12"}, {-3, "-3"}, {1920, "1920"}, {12.5, "12.5"}, {-2.5, "-2.5"},
        {0.1 + 0.2, "0.3"}, {1.0 / 3, "0.333333333333333"}, {2.0 / 3, "0.666666666666667"},
        {2147483648.0, "2147483648"}, {999999999999999.0, "999999999999999"}, {123456789012345.6, "123456789012346"},
        {1e15, "1E+15"}, {1e20, "1E+20"}, {-1.5e16, "-1.5E+16"}, {1e100, "1E+100"},
        {0.0001, "0.0001"}, {0.00001, "1E-05"}, {1.5e-7, "1.5E-07"},
    };
    for (const Row& r : rows) EXPECT_EQ(NumberToText(r.in), r.out) << r.in;
}

TEST(NumberToText, ReadsBackThroughVal) {
    for (double d : {7.0, 1919.5, -40.25, 1e20, 3e-9}) EXPECT_DOUBLE_EQ(Val(NumberToText(d)), d) << d;
}

}  // namespace
}  // namespace ostrivane
