// Stands in for libFuzzer in ordinary builds: hands each file of a folder to the target, whole and cut off at many
// places.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char** arguments) {
    constexpr std::size_t kCuts = 40;
    if (count != 2) {
        std::cerr << "usage: " << arguments[0] << " FOLDER\n";
        return 2;
    }
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        for (std::size_t cut = 1; cut <= kCuts; ++cut)
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size() * cut / kCuts);
        ++files;
    }
    std::cout << files << " files\n";
    return files > 0 ? 0 : 1;
}
