// kvtdruck waiting for what does not come, or does not end: pipes, devices, services that do not answer.
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

#include <csignal>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvtdruck::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class WaitingTest : public ProgramTest {
  protected:
    std::filesystem::path pipe() const {
        auto name = folder / "werte";
        EXPECT_EQ(::mkfifo(name.c_str(), 0600), 0);
        return name;
    }
    std::vector<std::string> bilanz(const std::filesystem::path& values) const {
        return command("drucken", "Bilanz", {"--werte", values.string(), "--ausgabe", output("Bilanz.pdf")});
    }
};

TEST_F(WaitingTest, ValuesComeThroughAPipe) {
    const auto values = pipe();
    Program program(bilanz(values), environment);
    const int writer = ::open(values.c_str(), O_WRONLY);
    const auto text = readFile(KVT_SOURCE_FOLDER "/demo/werte/Bilanz.csv");
    EXPECT_EQ(::write(writer, text.data(), text.size()), ssize_t(text.size()));
    ::close(writer);
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(readFile(output("Bilanz.pdf")), StartsWith("%PDF"));
}

TEST_F(WaitingTest, WaitingForValuesCanBeCancelled) {
    const auto values = pipe();
    Program program(bilanz(values), environment);
    const int writer = ::open(values.c_str(), O_WRONLY); // once the program waits
    program.signal(SIGINT);
    EXPECT_EQ(program.wait().exitCode, 130);
    ::close(writer);
    EXPECT_FALSE(std::filesystem::exists(output("Bilanz.pdf")));
}

TEST_F(WaitingTest, ValuesWithoutEndAreRefused) {
    const auto outcome = run(bilanz("/dev/zero"), environment);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors,
                HasSubstr("Die Datei /dev/zero kann nicht gelesen werden: sie ist größer als 64 MB"));
}

TEST_F(WaitingTest, ALayoutThatIsAPipeIsRefused) {
    kvtdruck({"pruefen", "Umsatz"}); // copies the layouts
    const auto layout = layouts() / "Umsatz.svg";
    std::filesystem::remove(layout);
    ASSERT_EQ(::mkfifo(layout.c_str(), 0600), 0);
    const auto outcome = print("Umsatz", {"--ausgabe", output("u.pdf")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("ist keine Datei"));
}

TEST_F(WaitingTest, AServiceThatDoesNotAnswerIsGivenUpOnRequest) {
    const int service = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(::bind(service, reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(::listen(service, 1), 0);
    ASSERT_EQ(::getsockname(service, reinterpret_cast<sockaddr*>(&address), &size), 0);
    environment["CUPS_SERVER"] = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    Program program(command("drucken", "Umsatz", {"--drucker", "Buero"}), environment);
    const int asked = ::accept(service, nullptr, nullptr); // and never an answer
    program.signal(SIGINT);
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_EQ(outcome.errors, "Fehler: Abgebrochen, ohne auf eine Antwort zu warten.\n");
    ::close(asked);
    ::close(service);
}

} // namespace
} // namespace kvtdruck::testing
