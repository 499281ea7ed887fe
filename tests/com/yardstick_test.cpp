// The portable conversions against those of OLE Automation itself: what the component writes must be what any
// Automation program on the machine writes. Under Wine the known departures from Windows are named where they are
// made up for.
#include "values/conversion.h"
#include "values/runtime_error.h"
#include "values/variant.h"

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

/// Of each of five kinds and in two locales: a million values in all.
constexpr int kSamples = 100'000;

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
    String copy(reinterpret_cast<const char16_t*>(text), SysStringLen(text));
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

/// Texts in all the notations of a number, and texts that are none.
class NumberTexts {
  public:
    explicit NumberTexts(const Locale& locale) : locale_(locale) {}

    /// Thousands separators at any place behind the first digit, the sign on either side, a currency symbol, an
    /// exponent or parentheses.
    String number() {
        String text = digits(1 + random_() % 9);
        if (chance(3))
            text += locale_.decimalSign + digits(random_() % 5);
        switch (random_() % 6) {
        case 0:
            return text + u"E" + sign() + decimal(static_cast<long long>(random_() % 100));
        case 1:
            return text + u" " + locale_.currencySymbol;
        case 2:
            return u"(" + text + u")";
        case 3:
            return u" " + sign() + text;
        case 4:
            return text + sign() + u" ";
        default:
            return locale_.currencySymbol + text;
        }
    }

    /// Wine, unlike Windows, takes a repeated sign or currency symbol, so these are left out.
    String noNumber() {
        static constexpr StringView kPieces[] = {u"x", u" 1", u"E", u"#", u"12 3", u"/", u"E+"};
        const String text = digits(random_() % 4) + String(kPieces[random_() % std::size(kPieces)]);
        return text + String(kPieces[random_() % std::size(kPieces)]);
    }

  private:
    bool chance(unsigned oneIn) { return random_() % oneIn == 0; }
    String sign() { return chance(2) ? u"-" : u"+"; }

    String digits(std::uint64_t count) {
        String text;
        for (std::uint64_t i = 0; i < count; ++i) {
            text += static_cast<char16_t>(u'0' + random_() % 10);
            if (chance(5) && i + 1 < count)
                text += locale_.thousandsSeparator;
        }
        return text;
    }

    const Locale& locale_;
    std::mt19937_64 random_{7};
};

/// As many digits as Wine gets right: it multiplies by a power of ten, which costs it the last place.
std::string inDigits(std::optional<double> number) {
    char text[40] = "none";
    if (number)
        std::snprintf(text, sizeof text, "%.14g", *number);
    return text;
}

/// What Automation reads from a text; infinity where it says that the number is too large.
std::optional<double> automationNumber(String text, LCID lcid) {
    double number = 0;
    switch (VarR8FromStr(reinterpret_cast<OLECHAR*>(text.data()), lcid, 0, &number)) {
    case S_OK:
        return number;
    case DISP_E_OVERFLOW:
        return std::numeric_limits<double>::infinity();
    default:
        return std::nullopt;
    }
}

TEST_P(Yardstick, TextsAsNumbers) {
    NumberTexts texts(locale());
    Agreement agreement;
    const auto compare = [&](const String& text) {
        agreement.compare(toUtf8(text), fromUtf8(inDigits(numberIn(text, locale()))),
                          fromUtf8(inDigits(automationNumber(text, lcid()))));
    };
    for (int i = 0; i < kSamples / 2; ++i) {
        compare(texts.number());
        compare(texts.noNumber());
    }
    agreement.expectComplete(kSamples);
}

INSTANTIATE_TEST_SUITE_P(, Yardstick,
                         testing::Values(Setting{"German", 0x407, germanLocale()},
                                         Setting{"English", 0x409, englishLocale()}),
                         [](const auto& instance) { return std::string(instance.param.name); });

} // namespace
} // namespace kvtdruck
