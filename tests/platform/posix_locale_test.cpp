#include "platform/posix/posix_platform.h"

#include "platform/posix/temporary_folder.h"
#include "values/conversion.h"
#include "values/printers.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

using namespace kvtdruck;

namespace {

TEST(LocaleByName, GermanInEverySpelling) {
    for (const std::string_view name : {"de", "de-DE", "de_DE", "DE_de", "de_DE.UTF-8", "de_DE.utf8", "de_DE@euro"})
        EXPECT_EQ(localeByName(name), germanLocale()) << name;
}

TEST(LocaleByName, BuiltIn) {
    const Date moment = dateOf(2009, 3, 7, 15, 4, 5);
    const Locale us = localeByName("en-US");
    EXPECT_EQ(textOf(1234.5, us), u"1234.5");
    EXPECT_EQ(textOf(moment, us), u"3/7/2009 3:04:05 PM");
    EXPECT_EQ(us.trueText, u"True");
    const Locale uk = localeByName("en_GB.UTF-8");
    EXPECT_EQ(textOf(moment, uk), u"07/03/2009 15:04:05");
    EXPECT_EQ(uk.currencySymbol, u"£");
    const Locale french = localeByName("fr-FR");
    EXPECT_EQ(textOf(moment, french), u"07/03/2009 15:04:05");
    EXPECT_EQ(textOf(1.5, french), u"1,5");
    EXPECT_EQ(numberIn(u"1 234,5", french), 1234.5);
    EXPECT_EQ(french.falseText, u"Faux");
    const Locale swiss = localeByName("de-CH");
    EXPECT_EQ(textOf(1234.5, swiss), u"1234.5");
    EXPECT_EQ(numberIn(u"CHF 1’234.50", swiss), 1234.5);
    EXPECT_EQ(textOf(moment, swiss), u"07.03.2009 15:04:05");
    EXPECT_EQ(swiss.trueText, u"Wahr");
    EXPECT_EQ(numberIn(u"1 234,5", localeByName("de-AT")), 1234.5);
}

TEST(LocaleByName, OfTheSystem) {
    // The C locale in UTF-8 belongs to the C library itself, so it is on every machine.
    const Locale system = localeByName("C.UTF-8");
    EXPECT_EQ(textOf(-1234.5, system), u"-1234.5");
    EXPECT_EQ(system.thousandsSeparator, u"");
    EXPECT_EQ(textOf(dateOf(2009, 3, 7, 15, 4, 5), system), u"03/07/09 15:04:05");
    EXPECT_EQ(system.am, u"AM");
    EXPECT_EQ(system.trueText, u"True");
}

void expectItalian() {
    const Locale italian = localeByName("it-IT");
    EXPECT_EQ(textOf(1234.5, italian), u"1234,5");
    EXPECT_EQ(numberIn(u"€ 1.234,5", italian), 1234.5);
    EXPECT_EQ(textOf(dateOf(2009, 3, 7, 15, 4, 5), italian), u"07/03/2009 15:04:05");
    EXPECT_EQ(italian.trueText, u"Vero");
}

TEST(LocaleByName, InstalledOne) {
    const TemporaryFolder folder;
    ASSERT_EQ(std::system(("localedef -i it_IT -f UTF-8 " + (folder / "it_IT.UTF-8").string()).c_str()), 0)
        << "needs the package locales";
    // In a process of its own: the C library keeps what it has once looked up, and leaks LOCPATH's parts.
    const auto inChild = [&] {
        setenv("LOCPATH", folder.path().c_str(), 1);
        expectItalian();
        std::_Exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(inChild(), testing::ExitedWithCode(0), "");
}

TEST(LocaleByName, NotInstalled) {
    try {
        localeByName("xx-YY");
        FAIL() << "no such locale";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 5);
        EXPECT_EQ(error.description(), u"Die Ländereinstellung „xx-YY“ ist auf diesem Rechner nicht installiert.");
    }
    EXPECT_EQ(errorOf([] { localeByName(""); }), 5);
    EXPECT_EQ(errorOf([] { localeByName("../../etc"); }), 5);
}

} // namespace
