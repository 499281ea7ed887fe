#include "cli/password.h"

#include "kvtzug/connection_string.h"
#include "values/runtime_error.h"

#include <array>
#include <cstdlib>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvtdruck::cli {
namespace {

[[noreturn]] void fail(const std::string& text) {
    throw RuntimeError(static_cast<long>(ErrorNumber::PathFileAccess), fromUtf8(text));
}

std::string firstLineOf(const std::filesystem::path& file) {
    const int handle = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status {};
    if (handle < 0 || ::fstat(handle, &status) != 0 || !S_ISREG(status.st_mode)) {
        if (handle >= 0)
            ::close(handle);
        fail("Die Kennwortdatei " + file.string() + " kann nicht gelesen werden.");
    }
    std::array<char, 1024> bytes{};
    const auto length = ::read(handle, bytes.data(), bytes.size());
    ::close(handle);
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        fail("Die Kennwortdatei " + file.string() + " ist für andere zugänglich; „chmod 600 " + file.string() +
             "“ ändert das.");
    const std::string text(bytes.data(), length > 0 ? std::size_t(length) : 0);
    return text.substr(0, text.find_first_of("\r\n"));
}

std::optional<std::string> password(const PasswordSource& source, Console& console) {
    if (!source.file.empty())
        return firstLineOf(source.file);
    if (source.ask) {
        auto entered = console.askSecretly("Kennwort der Datenbank: ");
        if (!entered)
            fail("Es wurde kein Kennwort eingegeben.");
        return entered;
    }
    const char* fromEnvironment = std::getenv("KVTDRUCK_KENNWORT");
    return fromEnvironment ? std::optional<std::string>(fromEnvironment) : std::nullopt;
}

} // namespace

String withPassword(const String& connectionString, const PasswordSource& source, Console& console) {
    for (const StringView name : {u"PWD", u"Password"})
        if (!connectionAttribute(connectionString, name).empty())
            return connectionString;
    const auto secret = password(source, console);
    if (!secret || secret->empty())
        return connectionString;
    const auto value = fromUtf8(*secret);
    // Drivers differ in whether they know braces; a value that needs none does without.
    const bool plain = value.find_first_of(u";{}= ") == String::npos;
    return connectionString + u";PWD=" + (plain ? value : braced(value));
}

} // namespace kvtdruck::cli
