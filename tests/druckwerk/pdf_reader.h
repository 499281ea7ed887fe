// Reads finished documents back with the tools that users have: poppler and qpdf.
#pragma once

#include <array>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <sys/wait.h>

namespace kvtdruck::druckwerk::testing {

/// What a command prints; an exit code other than 0 is a failure.
inline std::string outputOf(const std::string& command) {
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run " + command);
    std::string out;
    std::array<char, 4096> buffer{};
    for (std::size_t read = 0; (read = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
        out.append(buffer.data(), read);
    const int status = ::pclose(pipe);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(command + " failed: " + out);
    return out;
}

/// The text of the pages `first` to `last` (0: all), laid out as on paper.
inline std::string textOf(const std::filesystem::path& pdf, int first = 0, int last = 0) {
    const std::string range =
        first == 0 ? "" : " -f " + std::to_string(first) + " -l " + std::to_string(last == 0 ? first : last);
    return outputOf("pdftotext -layout" + range + " '" + pdf.string() + "' - 2>&1");
}

/// The text in the order of the file, for scripts whose layout depends on the reader.
inline std::string rawTextOf(const std::filesystem::path& pdf) {
    return outputOf("pdftotext -raw '" + pdf.string() + "' - 2>&1");
}

/// Words with their boxes (in points), as pdftotext's HTML.
inline std::string boxesOf(const std::filesystem::path& pdf) {
    return outputOf("pdftotext -bbox '" + pdf.string() + "' - 2>&1");
}

inline int pagesOf(const std::filesystem::path& pdf) {
    return std::stoi(outputOf("qpdf --show-npages '" + pdf.string() + "' 2>&1"));
}

/// Raises where the file is not sound PDF.
inline void check(const std::filesystem::path& pdf) {
    outputOf("qpdf --check '" + pdf.string() + "' 2>&1");
}

/// The level that the document says it has; raises where it does not keep it.
inline std::string levelOf(const std::filesystem::path& pdf) {
    const std::string checked = outputOf(std::string(KVT_LEVEL_CHECK) + " '" + pdf.string() + "' 2>&1");
    return checked.substr(pdf.string().size() + 1, checked.size() - pdf.string().size() - 2);
}

/// One attribute of the box of the `n`th word `word`, in points; -1 where there is none.
inline double boxOf(const std::string& boxes, const std::string& word, const std::string& attribute, int n = 1) {
    std::size_t at = 0;
    for (; n > 0; --n) {
        at = boxes.find(">" + word + "</word>", at + 1);
        if (at == std::string::npos)
            return -1;
    }
    const std::size_t tag = boxes.rfind("<word", at);
    const std::size_t value = boxes.find(attribute + "=\"", tag) + attribute.size() + 2;
    return std::stod(boxes.substr(value));
}

} // namespace kvtdruck::druckwerk::testing
