// Any bytes as a command line, with a word on each line: what it asks for, or what is wrong with it.
#include "catalog/usage_error.h"
#include "cli/options.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kvtdruck;
    static std::ostringstream help;
    static const bool prepared = [] {
        ::setenv("XDG_CONFIG_HOME", "/nowhere", 1); // the user's own settings are not to be known
        std::cout.rdbuf(help.rdbuf());
        return true;
    }();
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    std::vector<std::string> words{"kvtdruck"};
    for (std::string word; std::getline(lines, word);)
        if (word.find("auftrag") == std::string::npos) // which names a file of its own
            words.push_back(word.substr(0, word.find('\0')));
    std::vector<const char*> arguments;
    arguments.reserve(words.size());
    for (const auto& word : words)
        arguments.push_back(word.c_str());
    try {
        cli::parseCommandLine(prepared ? static_cast<int>(arguments.size()) : 0, arguments.data());
    } catch (const catalog::UsageError&) {
    }
    help.str({});
    return 0;
}
