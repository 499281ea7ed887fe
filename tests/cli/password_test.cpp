// Where the password of a connection comes from, and that it shows up nowhere.
#include "cli/password.h"
#include "cli/program_fixture.h"
#include "kvtzug/connection_string.h"
#include "values/runtime_error.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

namespace kvtdruck::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Passwords : public ::testing::Test {
  protected:
    Passwords() { unsetenv("KVTDRUCK_KENNWORT"); }
    ~Passwords() override { unsetenv("KVTDRUCK_KENNWORT"); }

    std::filesystem::path file(const std::string& content, std::filesystem::perms mode) const {
        auto path = folder_.path() / "kennwort";
        std::ofstream(path) << content;
        std::filesystem::permissions(path, mode);
        return path;
    }
    String connection(const cli::PasswordSource& source = {}, StringView text = u"Driver=x;UID=kvt") {
        return cli::withPassword(String(text), source, console_);
    }

    TemporaryFolder folder_;
    cli::Console console_;
};

constexpr auto kPrivate = std::filesystem::perms(0600);

TEST_F(Passwords, ComeFromAFileOrFromTheEnvironmentOrNotAtAll) {
    EXPECT_EQ(connection(), u"Driver=x;UID=kvt");
    setenv("KVTDRUCK_KENNWORT", "aus der Umgebung", 1);
    EXPECT_EQ(connection(), u"Driver=x;UID=kvt;PWD={aus der Umgebung}");
    EXPECT_EQ(connection({file("geheim\nzweite Zeile\n", kPrivate)}), u"Driver=x;UID=kvt;PWD=geheim");
    EXPECT_EQ(connection({}, u"Driver=x;password=eigenes"), u"Driver=x;password=eigenes");
}

TEST_F(Passwords, MeanThemselvesWhateverIsInThem) {
    for (const std::string secret : {"a;DSN=b", "{a}b}", "ä😀", "a=b", "}"})
        EXPECT_EQ(connectionAttribute(connection({file(secret + "\r\n", kPrivate)}), u"PWD"), fromUtf8(secret));
}

TEST_F(Passwords, AFileThatOthersCanReadIsRefused) {
    for (const auto mode : {0640, 0604, 0620, 0644}) {
        try {
            connection({file("geheim", std::filesystem::perms(mode))});
            ADD_FAILURE() << std::oct << mode;
        } catch (const RuntimeError& error) {
            EXPECT_THAT(error.what(), HasSubstr("ist für andere zugänglich; „chmod 600 "));
            EXPECT_THAT(error.what(), Not(HasSubstr("geheim")));
        }
    }
    EXPECT_THROW(connection({folder_.path()}), RuntimeError);
    EXPECT_THROW(connection({folder_.path() / "fehlt"}), RuntimeError);
}

class PasswordOptions : public ProgramTest {};

TEST_F(PasswordOptions, AreAskedForAndShowUpInNoMessage) {
    const std::vector<std::string> companies{"firmen", "--verbindung", "Driver={Gibt es nicht};UID=kvt"};
    auto arguments = companies;
    arguments.emplace_back("--kennwort-fragen");
    const auto outcome = kvtdruck(arguments, "sehr;geheim\n");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.output, HasSubstr("Kennwort der Datenbank: "));
    EXPECT_THAT(outcome.errors, HasSubstr("Der ODBC-Treiber „Gibt es nicht“ ist nicht eingerichtet"));
    EXPECT_THAT(outcome.output + outcome.errors, Not(HasSubstr("geheim")));
    const auto nothing = kvtdruck(arguments);
    EXPECT_EQ(nothing.exitCode, 1);
    EXPECT_THAT(nothing.errors, HasSubstr("Es wurde kein Kennwort eingegeben."));
}

TEST_F(PasswordOptions, BelongToAConnection) {
    const auto outcome = kvtdruck({"firmen", "--datenbank", database(), "--kennwort-fragen"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("--kennwort-fragen gilt nur mit --verbindung."));
}

} // namespace
} // namespace kvtdruck::testing
