// Any bytes as a file of values for one of the lists, chosen by the first byte: an array, or what is wrong with the
// file.
#include "catalog/values_file.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kvtdruck::catalog;
    if (size == 0)
        return 0;
    const auto& report = reports()[data[0] % reports().size()];
    if (!report.isFedByValues())
        return 0;
    try {
        parseValues(report, {reinterpret_cast<const char*>(data + 1), size - 1}, "werte.csv");
    } catch (const ValuesError&) {
    }
    return 0;
}
