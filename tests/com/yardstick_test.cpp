// The portable conversions against those of OLE Automation itself: what the component writes must be what any
// Automation program on the machine writes. Under Wine the known departures from Windows are named where they are
// made up for.
#include "platform/conversion.h"
#include "platform/runtime_error.h"
#include "platform/variant.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <oleauto.h>

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <random>

namespace kvtdruck {
namespace {

constexpr int kSamples = 1'000'000;

struct Setting {
    const char* name;
    LCID lcid;
    Locale locale;
};

Locale englishLocale() {
    Locale locale;
    locale.decimalSign = u".";
    locale.thousandsSeparator = u",";
    locale.currencySymbol = u"$";
    locale.shortDate = u"M/d/yyyy";
    locale.time = u"h:mm:ss tt";
    locale.am = u"AM";
    locale.pm = u"PM";
    locale.trueText = u"True";
    locale.falseText = u"False";
    return locale;
}

String taken(BSTR text) {
    const String copy(reinterpret_cast<const char16_t*>(text), SysStringLen(text));
    SysFreeString(text);
    return copy;
}

/// Compares two answers to the same question, many times; remembers the first disagreements only.
class Agreement {
  public:
    void compare(const std::string& question, const String& ours, const String& theirs) {
        ++asked_;
        if (ours == theirs)
            return;
        ++disagreements_;
        if (disagreements_ <= 10)
            examples_ += question + ": \"" + toUtf8(ours) + "\" but \"" + toUtf8(theirs) + "\"\n";
    }

    void expectComplete(int asked) const {
        EXPECT_EQ(disagreements_, 0) << examples_;
        EXPECT_GE(asked_, asked);
    }

  private:
    int asked_ = 0;
    int disagreements_ = 0;
    std::string examples_;
};

/// Numbers of all kinds: any bit pattern, amounts with few decimals, neighbours of powers of ten, halves of the
/// last digit that is shown.
template <class Real>
class Numbers {
  public:
    Real next() {
        switch (kind_++ % 4) {
        case 0:
            return anyFinite();
        case 1:
            return static_cast<Real>(
                       std::uniform_int_distribution<std::int64_t>(-999'999'999'999, 999'999'999'999)(random_)) /
                   static_cast<Real>(powerOfTen(0, 6));
        case 2:
            return std::nextafter(static_cast<Real>(powerOfTen(-20, 20)),
                                  static_cast<Real>(sign()) * std::numeric_limits<Real>::max());
        default:
            return static_cast<Real>((std::uniform_int_distribution<int>(0, 99'999'999)(random_) + 0.5) * sign() *
                                     powerOfTen(-12, 12));
        }
    }

  private:
    using Bits = std::conditional_t<sizeof(Real) == 8, std::uint64_t, std::uint32_t>;

    Real anyFinite() {
        for (;;) {
            const auto number = std::bit_cast<Real>(static_cast<Bits>(random_()));
            if (std::isfinite(number))
                return number;
        }
    }

    double powerOfTen(int from, int to) { return std::pow(10.0, std::uniform_int_distribution(from, to)(random_)); }
    int sign() { return random_() % 2 == 0 ? 1 : -1; }

    std::mt19937_64 random_{20'110'401};
    unsigned kind_ = 0;
};

template <class Real>
std::string shown(Real number) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", static_cast<double>(number));
    return text;
}

/// Wine writes "." in the exponent form whatever the locale's decimal sign; Windows writes the locale's.
String withoutWinesExponentSign(String text, const Locale& locale) {
    const auto point = text.find(u'.');
    if (text.find(u'E') != String::npos && point != String::npos)
        text.replace(point, 1, locale.decimalSign);
    return text;
}

String automationText(double number, const Setting& setting) {
    BSTR text = nullptr;
    EXPECT_EQ(VarBstrFromR8(number, setting.lcid, 0, &text), S_OK);
    return withoutWinesExponentSign(taken(text), setting.locale);
}

String automationText(float number, const Setting& setting) {
    BSTR text = nullptr;
    EXPECT_EQ(VarBstrFromR4(number, setting.lcid, 0, &text), S_OK);
    return withoutWinesExponentSign(taken(text), setting.locale);
}

class Yardstick : public testing::TestWithParam<Setting> {
  protected:
    const Setting& setting() const { return GetParam(); }
    const Locale& locale() const { return GetParam().locale; }
    LCID lcid() const { return GetParam().lcid; }
};

TEST_P(Yardstick, DoublesAsText) {
    Numbers<double> numbers;
    Agreement agreement;
    for (int i = 0; i < kSamples; ++i) {
        const double number = numbers.next();
        agreement.compare(shown(number), textOf(number, locale()), automationText(number, setting()));
    }
    agreement.expectComplete(kSamples);
}

TEST_P(Yardstick, SinglesAsText) {
    Numbers<float> numbers;
    Agreement agreement;
    for (int i = 0; i < kSamples; ++i) {
        const float number = numbers.next();
        agreement.compare(shown(number), textOf(number, locale()), automationText(number, setting()));
    }
    agreement.expectComplete(kSamples);
}

TEST_P(Yardstick, EdgesAsText) {
    Agreement agreement;
    for (const double number : {0.0,
                                -0.0,
                                1.0,
                                -1.0,
                                0.1,
                                0.0001,
                                0.00001,
                                0.00009999999999999999,
                                123456789012345.0,
                                1e14,
                                1e15,
                                999999999999999.4,
                                999999999999999.5,
                                0.3,
                                1.0 / 3,
                                2.0 / 3,
                                1234.5,
                                1e-300,
                                1e300,
                                std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::denorm_min(),
                                std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::lowest()}) {
        agreement.compare(shown(number), textOf(number, locale()), automationText(number, setting()));
        const auto single = static_cast<float>(number);
        if (std::isfinite(single))
            agreement.compare(shown(single), textOf(single, locale()), automationText(single, setting()));
    }
    agreement.expectComplete(40);
}

TEST_P(Yardstick, DatesAsText) {
    std::mt19937_64 random{1899};
    Agreement agreement;
    const auto compare = [&](double days) {
        BSTR text = nullptr;
        ASSERT_EQ(VarBstrFromDate(days, lcid(), 0, &text), S_OK) << shown(days);
        agreement.compare(shown(days), textOf(Date{days}, locale()), taken(text));
    };
    // Whole days, days with a time to the second, and times alone.
    std::uniform_int_distribution<int> day(-657434, 2958465);
    std::uniform_int_distribution<int> second(0, 86399);
    for (int i = 0; i < kSamples / 3 + 1; ++i) {
        const double whole = day(random);
        const double time = second(random) / 86400.0;
        compare(whole);
        compare(whole < 0 ? whole - time : whole + time);
        compare(time);
    }
    agreement.expectComplete(kSamples);
}

TEST_P(Yardstick, CurrencyAndDecimalAsText) {
    std::mt19937_64 random{42};
    Agreement agreement;
    for (int i = 0; i < kSamples / 2; ++i) {
        const auto amount = static_cast<std::int64_t>(random()) >> (random() % 60);
        CY currency;
        currency.int64 = amount;
        BSTR text = nullptr;
        ASSERT_EQ(VarBstrFromCy(currency, lcid(), 0, &text), S_OK);
        agreement.compare(std::to_string(amount), textOf(Currency{amount}, locale()), taken(text));

        DECIMAL decimal{};
        decimal.scale = static_cast<BYTE>(random() % 29);
        decimal.sign = random() % 2 == 0 ? 0 : DECIMAL_NEG;
        decimal.Lo64 = random() >> (random() % 64);
        decimal.Hi32 = random() % 2 == 0 ? 0 : static_cast<ULONG>(random());
        ASSERT_EQ(VarBstrFromDec(&decimal, lcid(), 0, &text), S_OK);
        const Decimal ours{decimal.Lo64, decimal.Hi32, decimal.scale, decimal.sign != 0};
        agreement.compare(std::to_string(decimal.Lo64) + "/" + std::to_string(decimal.Hi32) + "/" +
                              std::to_string(decimal.scale),
                          textOf(ours, locale()), taken(text));
    }
    agreement.expectComplete(kSamples);
}

/// A text that is a number, or nearly one.
class NumberTexts {
  public:
    explicit NumberTexts(const Locale& locale)
        : pieces_{u"0",
                  u"1",
                  u"5",
                  u"12",
                  u"999",
                  u"123456789",
                  u" ",
                  u"-",
                  u"+",
                  u"(",
                  u")",
                  u"E5",
                  u"e-3",
                  u"E+",
                  u"x",
                  locale.decimalSign,
                  locale.decimalSign,
                  locale.thousandsSeparator,
                  locale.currencySymbol} {}

    String next() {
        String text;
        for (auto count = random_() % 6; count > 0; --count)
            text += pieces_[random_() % pieces_.size()];
        return text;
    }

  private:
    std::vector<String> pieces_;
    std::mt19937_64 random_{7};
};

std::string inDigits(std::optional<double> number) {
    return number ? shown(*number) : "none";
}

TEST_P(Yardstick, TextsAsNumbers) {
    NumberTexts texts(locale());
    Agreement agreement;
    for (int i = 0; i < kSamples; ++i) {
        String text = texts.next();
        double number = 0;
        const auto result = VarR8FromStr(reinterpret_cast<OLECHAR*>(text.data()), lcid(), 0, &number);
        const std::optional<double> theirs = result == S_OK ? std::optional(number) : std::nullopt;
        agreement.compare(toUtf8(text), fromUtf8(inDigits(numberIn(text, locale()))), fromUtf8(inDigits(theirs)));
    }
    agreement.expectComplete(kSamples);
}

INSTANTIATE_TEST_SUITE_P(, Yardstick,
                         testing::Values(Setting{"German", 0x407, germanLocale()},
                                         Setting{"English", 0x409, englishLocale()}),
                         [](const auto& instance) { return std::string(instance.param.name); });

} // namespace
} // namespace kvtdruck
