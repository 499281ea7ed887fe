// Automation values: comparisons and conversions.
#include "values/variant.h"

#include "values/conversion.h"
#include "values/expected.h"
#include "values/printers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

using namespace kvtdruck;

namespace {

constexpr auto Equal = Comparison::Equal;
constexpr auto Unequal = Comparison::Unequal;
constexpr auto Undecided = Comparison::Undecided;

Variant object() {
    class Nobody : public Object {
      public:
        MemberId idOf(StringView) override { return 0; }
        Variant call(MemberId, std::span<const Variant>) override { return {}; }
        void put(MemberId, std::span<const Variant>, const Variant&) override {}
    };
    return ObjectRef(std::make_shared<Nobody>());
}

struct NumberCase {
    Variant value;
    double number;
    Comparison result;
};

TEST(Comparing, WithANumber) {
    const std::vector<NumberCase> cases{
        {Variant(), 0, Equal},
        {Variant(), 1, Unequal},
        {Null(), 0, Undecided},
        {Null(), 1, Undecided},
        {true, -1, Equal},
        {true, 1, Unequal},
        {false, 0, Equal},
        {std::uint8_t{255}, 255, Equal},
        {std::int16_t{12}, 12, Equal},
        {std::int32_t{13}, 12, Unequal},
        {0.5F, 0.5, Equal},
        {12.0, 12, Equal},
        {12.0000001, 12, Unequal},
        {Currency{120000}, 12, Equal},
        {Decimal{12, 0, 0, false}, 12, Equal},
        {Decimal{125, 0, 1, true}, -12.5, Equal},
        {Date{0}, 0, Equal},
        {dateOf(2000, 1, 1), 36526, Equal},
        {u"0", 0, Equal},
        {u" 12 ", 12, Equal},
        {u"1.234,5", 1234.5, Equal},
        {u"1234.5", 12345, Equal},
        {u"13", 12, Unequal},
    };
    for (const NumberCase& it : cases)
        EXPECT_EQ(compareWithNumber(it.value, it.number, german), it.result)
            << it.value.value().index() << " = " << it.number;
}

TEST(Comparing, ATextThatIsNoNumberWithANumberIsATypeMismatch) {
    for (const char16_t* text : {u"", u"abc", u"EUR", u"Wahr", u"True"})
        EXPECT_EQ(errorOf([&] { compareWithNumber(text, 0, german); }), 13) << toUtf8(text);
    EXPECT_EQ(errorOf([&] { compareWithNumber(ErrorValue{5}, 0, german); }), 13);
    EXPECT_EQ(errorOf([&] { compareWithNumber(object(), 0, german); }), 13);
}

TEST(Comparing, WithATruthValue) {
    EXPECT_EQ(compareWithBoolean(Variant(), false, german), Equal);
    EXPECT_EQ(compareWithBoolean(Variant(), true, german), Unequal);
    EXPECT_EQ(compareWithBoolean(Null(), false, german), Undecided);
    EXPECT_EQ(compareWithBoolean(Null(), true, german), Undecided);
    EXPECT_EQ(compareWithBoolean(true, true, german), Equal);
    EXPECT_EQ(compareWithBoolean(false, true, german), Unequal);
    // Only -1 equals True; 1 equals neither.
    EXPECT_EQ(compareWithBoolean(std::int16_t{-1}, true, german), Equal);
    EXPECT_EQ(compareWithBoolean(std::int16_t{1}, true, german), Unequal);
    EXPECT_EQ(compareWithBoolean(std::int16_t{1}, false, german), Unequal);
    EXPECT_EQ(compareWithBoolean(0.0, false, german), Equal);
    EXPECT_EQ(compareWithBoolean(u"0", false, german), Equal);
    EXPECT_EQ(compareWithBoolean(u"-1", true, german), Equal);
    EXPECT_EQ(compareWithBoolean(u"1", true, german), Unequal);
    EXPECT_EQ(compareWithBoolean(u"Wahr", true, german), Equal);
    EXPECT_EQ(compareWithBoolean(u"FALSCH", false, german), Equal);
    EXPECT_EQ(compareWithBoolean(u"true", true, german), Equal);
    EXPECT_EQ(compareWithBoolean(u"False", true, german), Unequal);
    EXPECT_EQ(errorOf([] { compareWithBoolean(u"ja", true, german); }), 13);
    EXPECT_EQ(errorOf([] { compareWithBoolean(u"", false, german); }), 13);
    EXPECT_EQ(errorOf([] { compareWithBoolean(u"Wahr", true, englishLocale()); }), 13);
}

TEST(Comparing, WithAText) {
    EXPECT_EQ(compareWithText(u"EUR", u"EUR", german), Equal);
    EXPECT_EQ(compareWithText(u"eur", u"EUR", german), Unequal);
    EXPECT_EQ(compareWithText(u"EUR ", u"EUR", german), Unequal);
    EXPECT_EQ(compareWithText(Variant(), u"", german), Equal);
    EXPECT_EQ(compareWithText(Variant(), u"EUR", german), Unequal);
    EXPECT_EQ(compareWithText(Null(), u"", german), Undecided);
    EXPECT_EQ(compareWithText(12.5, u"12,5", german), Equal);
    EXPECT_EQ(compareWithText(true, u"Wahr", german), Equal);
    EXPECT_EQ(errorOf([] { compareWithText(ErrorValue{5}, u"", german); }), 13);
    EXPECT_EQ(errorOf([] { compareWithText(object(), u"", german); }), 13);
}

TEST(Comparing, ShorthandsTakeLiteralsForWhatTheyAre) {
    EXPECT_TRUE(equals(u"EUR", u"EUR", german));
    EXPECT_FALSE(equals(u"DM", u"EUR", german));
    EXPECT_TRUE(equals(Variant(), 0, german));
    EXPECT_TRUE(equals(Variant(), false, german));
    EXPECT_TRUE(equals(Variant(), u"", german));
    EXPECT_TRUE(equals(std::int16_t{1}, 1, german));
    EXPECT_FALSE(equals(Null(), 0, german));
    EXPECT_FALSE(equals(Null(), true, german));
    EXPECT_FALSE(equals(Null(), false, german));
    EXPECT_FALSE(equals(Null(), u"", german));
}

TEST(Converting, ToText) {
    const std::vector<std::pair<Variant, StringView>> cases{
        {Variant(), u""},
        {true, u"Wahr"},
        {false, u"Falsch"},
        {std::uint8_t{200}, u"200"},
        {std::int16_t{-32768}, u"-32768"},
        {std::int32_t{2147483647}, u"2147483647"},
        {0.1F, u"0,1"},
        {1234.5, u"1234,5"},
        {Currency{12500}, u"1,25"},
        {Decimal{5, 0, 1, true}, u"-0,5"},
        {dateOf(2010, 5, 1), u"01.05.2010"},
        {u"wie er ist ", u"wie er ist "},
        {u"1234.5", u"1234.5"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(toText(value, german), text);
    EXPECT_EQ(toText(true, englishLocale()), u"True");
    EXPECT_EQ(errorOf([] { toText(Null(), german); }), 94);
    EXPECT_EQ(errorOf([] { toText(object(), german); }), 13);
    EXPECT_EQ(errorOf([] { toText(ObjectRef(), german); }), 13);
    EXPECT_EQ(errorOf([] { toText(ErrorValue{1}, german); }), 13);
    EXPECT_EQ(errorOf([] { toText(Date{1e9}, german); }), 6);
}

TEST(Converting, ToDouble) {
    EXPECT_EQ(toDouble(Variant(), german), 0);
    EXPECT_EQ(toDouble(true, german), -1);
    EXPECT_EQ(toDouble(false, german), 0);
    EXPECT_EQ(toDouble(0.1F, german), static_cast<double>(0.1F));
    EXPECT_EQ(toDouble(Currency{1}, german), 0.0001);
    EXPECT_EQ(toDouble(Currency{std::numeric_limits<std::int64_t>::max()}, german), 922337203685477.5807);
    EXPECT_EQ(toDouble(Decimal{1, 0, 28, false}, german), 1e-28);
    EXPECT_EQ(toDouble(Decimal{~0ULL, ~0U, 0, true}, german), -79228162514264337593543950335.0);
    EXPECT_EQ(toDouble(u"1.234,5", german), 1234.5);
    EXPECT_EQ(toDouble(u"1,234.5", englishLocale()), 1234.5);
    EXPECT_EQ(errorOf([] { toDouble(Null(), german); }), 94);
    EXPECT_EQ(errorOf([] { toDouble(u"", german); }), 13);
    EXPECT_EQ(errorOf([] { toDouble(u"1E309", german); }), 6);
    EXPECT_EQ(errorOf([] { toDouble(object(), german); }), 13);
    EXPECT_EQ(errorOf([] { toDouble(ErrorValue{1}, german); }), 13);
}

TEST(Converting, ToSingle) {
    EXPECT_EQ(toSingle(2013.0, german), 2013.0F);
    EXPECT_EQ(toSingle(0.1, german), 0.1F);
    EXPECT_EQ(toSingle(16777217.0, german), 16777216.0F);
    EXPECT_EQ(toSingle(u"12,5", german), 12.5F);
    EXPECT_EQ(toSingle(Variant(), german), 0.0F);
    EXPECT_EQ(toSingle(1e-300, german), 0.0F);
    EXPECT_TRUE(std::isnan(toSingle(std::nan(""), german)));
    EXPECT_EQ(toSingle(std::numeric_limits<float>::infinity(), german), std::numeric_limits<float>::infinity());
    EXPECT_EQ(errorOf([] { toSingle(3.5e38, german); }), 6);
    EXPECT_EQ(errorOf([] { toSingle(-1e300, german); }), 6);
    EXPECT_EQ(errorOf([] { toSingle(infinity, german); }), 6);
    EXPECT_EQ(errorOf([] { toSingle(Null(), german); }), 94);
    EXPECT_EQ(errorOf([] { toSingle(u"x", german); }), 13);
}

TEST(Converting, RoundsHalvesToTheEvenNeighbour) {
    const std::vector<std::pair<double, int>> cases{
        {0.5, 0},          {1.5, 2},       {2.5, 2},       {3.5, 4},
        {-0.5, 0},         {-1.5, -2},     {-2.5, -2},     {0.49999999999999994, 0},
        {2.51, 3},         {2012.5, 2012}, {2013.5, 2014}, {32767.4, 32767},
        {-32768.5, -32768}};
    for (const auto& [value, whole] : cases) {
        EXPECT_EQ(roundToInteger(value), whole) << value;
        EXPECT_EQ(roundToLong(value), whole) << value;
    }
    EXPECT_EQ(roundToLong(2147483647.4), 2147483647);
    EXPECT_EQ(roundToLong(-2147483648.5), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(toInteger(u"2,5", german), 2);
    EXPECT_EQ(toInteger(Currency{35000}, german), 4);
    EXPECT_EQ(toInteger(true, german), -1);
    EXPECT_EQ(toLong(Decimal{25, 0, 1, true}, german), -2);
}

TEST(Converting, OverflowOfWholeNumbers) {
    for (const double value : {32767.5, -32769.0, 1e300, infinity, -infinity, std::nan("")})
        EXPECT_EQ(errorOf([&] { roundToInteger(value); }), 6) << value;
    for (const double value : {2147483647.5, -2147483649.0, 1e300, infinity, -infinity, std::nan("")})
        EXPECT_EQ(errorOf([&] { roundToLong(value); }), 6) << value;
    EXPECT_EQ(errorOf([] { toInteger(std::int32_t{32768}, german); }), 6);
    EXPECT_EQ(errorOf([] { toInteger(u"99999", german); }), 6);
    EXPECT_EQ(errorOf([] { toLong(u"2147483648", german); }), 6);
    EXPECT_EQ(errorOf([] { toLong(Null(), german); }), 94);
}

TEST(Converting, ToBoolean) {
    EXPECT_FALSE(toBoolean(Variant(), german));
    EXPECT_TRUE(toBoolean(0.1, german));
    EXPECT_TRUE(toBoolean(u"Wahr", german));
    EXPECT_FALSE(toBoolean(u"falsch", german));
    EXPECT_TRUE(toBoolean(u"2", german));
    EXPECT_EQ(errorOf([] { toBoolean(u"ja", german); }), 13);
    EXPECT_EQ(errorOf([] { toBoolean(Null(), german); }), 94);
}

TEST(Coercing, KeepsWhatHasTheType) {
    const Variant someone = object();
    const std::vector<std::pair<ValueType, Variant>> cases{
        {ValueType::Boolean, true},         {ValueType::Integer, std::int16_t{7}},
        {ValueType::Long, std::int32_t{7}}, {ValueType::Single, 0.1F},
        {ValueType::Double, 0.1},           {ValueType::Date, dateOf(2000, 1, 1, 7)},
        {ValueType::Text, u"Text"},         {ValueType::Object, someone},
        {ValueType::Variant, Null()},       {ValueType::Variant, someone}};
    for (const auto& [type, value] : cases)
        EXPECT_EQ(coerced(value, type, german), value);
}

TEST(Coercing, Converts) {
    EXPECT_EQ(coerced(std::int32_t{5}, ValueType::Double, german), Variant(5.0));
    EXPECT_EQ(coerced(u"2,5", ValueType::Integer, german), Variant(std::int16_t{2}));
    EXPECT_EQ(coerced(12.5, ValueType::Text, german), Variant(u"12,5"));
    EXPECT_EQ(coerced(std::int16_t{1}, ValueType::Boolean, german), Variant(true));
    EXPECT_EQ(coerced(u"01.02.2000", ValueType::Date, german), Variant(dateOf(2000, 2, 1)));
    EXPECT_EQ(coerced(36526.0, ValueType::Date, german), Variant(dateOf(2000, 1, 1)));
    EXPECT_EQ(coerced(Variant(), ValueType::Text, german), Variant(u""));
    EXPECT_EQ(coerced(Variant(), ValueType::Double, german), Variant(0.0));
    EXPECT_EQ(coerced(Variant(), ValueType::Date, german), Variant(Date{0}));
}

TEST(Coercing, WhatCannotBeCoerced) {
    for (const ValueType type : {ValueType::Boolean, ValueType::Integer, ValueType::Long, ValueType::Single,
                                 ValueType::Double, ValueType::Date, ValueType::Text, ValueType::Object}) {
        EXPECT_EQ(errorOf([&] { coerced(Null(), type, german); }), 13);
        EXPECT_EQ(errorOf([&] { coerced(ErrorValue{1}, type, german); }), 13);
    }
    EXPECT_EQ(errorOf([] { coerced(1.0, ValueType::Object, german); }), 13);
    EXPECT_EQ(errorOf([] { coerced(Variant(), ValueType::Object, german); }), 13);
    EXPECT_EQ(errorOf([] { coerced(object(), ValueType::Double, german); }), 13);
    EXPECT_EQ(errorOf([] { coerced(u"gestern", ValueType::Date, german); }), 13);
    EXPECT_EQ(errorOf([] { coerced(1e9, ValueType::Date, german); }), 6);
    EXPECT_EQ(errorOf([] { coerced(70000.0, ValueType::Integer, german); }), 6);
    EXPECT_EQ(errorOf([] { coerced(1e300, ValueType::Single, german); }), 6);
}

TEST(Values, CompareByTypeAndValue) {
    EXPECT_EQ(Variant(1.0), Variant(1.0));
    EXPECT_NE(Variant(1.0), Variant(1.0F));
    EXPECT_NE(Variant(), Variant(Null()));
    EXPECT_EQ(Variant(u"a"), Variant(String(u"a")));
}

} // namespace
