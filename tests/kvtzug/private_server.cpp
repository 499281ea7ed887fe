#include "kvtzug/private_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kvtdruck::test {
namespace {

int freePort() {
    const int handle = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool bound = bind(handle, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                       getsockname(handle, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(handle);
    if (!bound)
        throw std::runtime_error("no free port on loopback");
    return ntohs(address.sin_port);
}

} // namespace

PrivateServer::PrivateServer() : port_(freePort()) {
    // The server's user must get into the folder, and own the one beneath it.
    std::filesystem::permissions(base_.path(), std::filesystem::perms(0711));
    std::filesystem::create_directory(folder());
    if (geteuid() == 0 && std::system(("chown nobody '" + folder().string() + "'").c_str()) != 0)
        throw std::runtime_error("the server's folder can't be handed to its user");
}

std::string PrivateServer::logged() const {
    std::ifstream text(log());
    return {std::istreambuf_iterator<char>(text), {}};
}

} // namespace kvtdruck::test
