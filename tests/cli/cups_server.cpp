#include "cli/cups_server.h"

#include <regex>
#include <stdexcept>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kvtdruck::testing {
namespace {

/// A port that nobody uses at this moment.
int freePort() {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    const bool bound = ::bind(socket, generic, size) == 0 && ::getsockname(socket, generic, &size) == 0;
    ::close(socket);
    if (!bound)
        throw std::system_error(errno, std::generic_category());
    return ntohs(address.sin_port);
}

/// A printer that takes PDF as it is; its one filter copies, since the service prints only what passes a filter.
constexpr const char* kPrinter = R"ppd(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: German
*LanguageEncoding: ISOLatin1
*PCFileName: "DATEI.PPD"
*Manufacturer: "Datei"
*Product: "(Datei)"
*ModelName: "Datei"
*ShortNickName: "Datei"
*NickName: "Datei"
*PSVersion: "(3010.000) 0"
*LanguageLevel: "3"
*ColorDevice: True
*OpenUI *PageSize: PickOne
*DefaultPageSize: A4
*PageSize A4/A4: ""
*CloseUI: *PageSize
*OpenUI *PageRegion: PickOne
*DefaultPageRegion: A4
*PageRegion A4/A4: ""
*CloseUI: *PageRegion
*DefaultImageableArea: A4
*ImageableArea A4/A4: "0 0 595 842"
*DefaultPaperDimension: A4
*PaperDimension A4/A4: "595 842"
)ppd";

} // namespace

CupsServer::CupsServer() {
    const int port = freePort();
    address_ = "127.0.0.1:" + std::to_string(port);
    writeConfiguration(port);
    server_ = std::make_unique<Program>(std::vector<std::string>{"/usr/sbin/cupsd", "-f", "-c",
                                                                 (folder_ / "root/cupsd.conf").string(), "-s",
                                                                 (folder_ / "root/cups-files.conf").string()});
    const auto isUp = [&] { return run({"lpstat", "-a"}, {{"CUPS_SERVER", address_}}).exitCode == 0; };
    if (!waitUntil(isUp))
        throw std::runtime_error("cupsd does not start: " + readFile(folder_ / "errors"));
}

void CupsServer::writeConfiguration(int port) const {
    const auto at = [this](const std::string& name) { return (folder_ / name).string(); };
    for (const auto* name : {"root", "root/ppd", "cache", "state", "spool", "tmp"})
        std::filesystem::create_directory(folder_ / name);
    // A service that is started as root runs its filters as another user, who must get here.
    std::filesystem::permissions(folder_.path(), std::filesystem::perms::owner_all |
                                                     std::filesystem::perms::group_exec |
                                                     std::filesystem::perms::others_exec);
    writeFile(folder_ / "root/cupsd.conf", "Listen 127.0.0.1:" + std::to_string(port) +
                                               "\nBrowsing No\nWebInterface No\nDefaultAuthType None\n"
                                               "<Location />\nOrder allow,deny\nAllow localhost\n</Location>\n"
                                               "<Policy default>\nJobPrivateAccess all\nJobPrivateValues none\n"
                                               "<Limit All>\nOrder allow,deny\nAllow all\n</Limit>\n</Policy>\n");
    writeFile(folder_ / "root/cups-files.conf",
              "FileDevice Yes\nServerRoot " + at("root") + "\nCacheDir " + at("cache") + "\nStateDir " +
                  at("state") + "\nRequestRoot " + at("spool") + "\nTempDir " + at("tmp") + "\nAccessLog " +
                  at("access") + "\nErrorLog " + at("errors") + "\nPageLog " + at("pages") +
                  "\nSystemGroup root\nUser nobody\nGroup nogroup\n");
    writeFile(folder_ / "root/printers.conf", "<DefaultPrinter Buero>\nInfo Drucker im Büro\nDeviceURI file://" +
                                                  printed().string() +
                                                  "\nState Idle\nAccepting Yes\n</DefaultPrinter>\n"
                                                  "<Printer Lager>\nDeviceURI file://" +
                                                  at("lager.prn") +
                                                  "\nState Stopped\nAccepting Yes\n</Printer>\n"
                                                  "<Printer Defekt>\nDeviceURI file://" +
                                                  at("defekt.prn") + "\nState Idle\nAccepting No\n</Printer>\n");
    writeScript(folder_ / "root/copy", "cat ${6:+\"$6\"}\n");
    writeFile(folder_ / "root/ppd/Buero.ppd",
              kPrinter + ("*cupsFilter2: \"application/pdf application/pdf 0 " + at("root/copy") + "\"\n"));
}

std::string CupsServer::jobAttribute(int job, const std::string& name) const {
    writeFile(folder_ / "job.test", "{\nOPERATION Get-Job-Attributes\nGROUP operation-attributes-tag\n"
                                    "ATTR charset attributes-charset utf-8\n"
                                    "ATTR language attributes-natural-language de\n"
                                    "ATTR uri job-uri ipp://localhost/jobs/" +
                                        std::to_string(job) + "\n}\n");
    const auto result = run({"ipptool", "-tv", "ipp://" + address_ + "/", (folder_ / "job.test").string()});
    std::smatch found;
    const std::regex line("\n +" + name + " \\([^)]*\\) = ([^\n]*)");
    return std::regex_search(result.output, found, line) ? found[1].str() : "";
}

} // namespace kvtdruck::testing
