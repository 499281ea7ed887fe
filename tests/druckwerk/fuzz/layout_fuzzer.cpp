// Any bytes as a layout: findings or a layout, in bounded time and memory.
#include "druckwerk/layout.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kvtdruck::druckwerk;
    Definitions definitions;
    std::vector<Finding> findings;
    readLayout({reinterpret_cast<const char*>(data), size}, "layout.svg", "/nonexistent", definitions, findings);
    return 0;
}
