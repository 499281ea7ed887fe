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
    EXPECT_EQ(localeByName("en"), us);
    EXPECT_EQ(textOf(1234.5, us), u"1234.5");
    EXPECT_EQ(textOf(moment, us), u"3/7/2009 3:04:05 PM");
    EXPECT_EQ(us.trueText, u"True");
    const Locale uk = localeByName("en_GB.UTF-8");
    EXPECT_EQ(textOf(moment, uk), u"07/03/2009 15:04:05");
    EXPECT_EQ(uk.currencySymbol, u"£");
    const Locale french = localeByName("fr-FR");
    EXPECT_EQ(localeByName("fr"), french);
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

/// One that writes days and months without zeros, years of an era, and times as no pattern can tell.
void expectUnusual() {
    const Locale unusual = localeByName("xx-YY");
    EXPECT_EQ(unusual.shortDate, u"d.MM.yyyy");
    EXPECT_EQ(unusual.time, u"HH:mm:ss");
    EXPECT_EQ(textOf(1234.5, unusual), u"1234,5");
}

/// Installs the system's Italian locale as `name` in `folder`, changed by a script of sed. Its letters and their
/// order, which take most of the time and are not looked at, are those of no language.
bool installed(const TemporaryFolder& folder, const std::string& name, const std::string& changes) {
    const auto plain = [](const std::string& part) {
        return "/^" + part + "/,/^END " + part + "/c " + part + "\\ncopy \"POSIX\"\\nEND " + part + "\n";
    };
    const std::string file = (folder / name).string();
    const std::string script = plain("LC_CTYPE") + plain("LC_COLLATE") + changes;
    return std::system(("sed '" + script + "' /usr/share/i18n/locales/it_IT >" + file + " && localedef -i " + file +
                        " -f UTF-8 " + file + ".UTF-8")
                           .c_str()) == 0;
}

TEST(LocaleByName, InstalledOne) {
    const TemporaryFolder folder;
    ASSERT_TRUE(installed(folder, "it_IT", "")) << "needs the package locales";
    ASSERT_TRUE(installed(folder, "xx_YY", R"(s/^d_fmt .*/d_fmt "%-Od.%Om.%-Y"/; s/^t_fmt .*/t_fmt "%H Uhr %"/)"));
    // In a process of its own: the C library keeps what it has once looked up, and leaks LOCPATH's parts.
    const auto inChild = [&] {
        setenv("LOCPATH", folder.path().c_str(), 1);
        expectItalian();
        expectUnusual();
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
