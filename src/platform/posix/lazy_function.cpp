#include "platform/posix/lazy_function.h"

#include <dlfcn.h>
#include <stdexcept>
#include <string>

namespace kvtdruck {

void* addressOf(const char* library, const char* name) {
    if (void* const present = ::dlsym(RTLD_DEFAULT, name)) // loaded already, or put before the library
        return present;
    void* const handle = ::dlopen(library, RTLD_LAZY | RTLD_LOCAL);
    void* const address = handle != nullptr ? ::dlsym(handle, name) : nullptr;
    if (address == nullptr)
        throw std::runtime_error("Die Bibliothek „" + std::string(library) +
                                 "“ kann nicht geladen werden: " + ::dlerror());
    return address;
}

} // namespace kvtdruck
