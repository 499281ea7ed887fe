#pragma once

#include "cli/program_fixture.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace kvtdruck::testing {

/// Prints into files of the test's folder.
class CommandLine : public ProgramTest {
  protected:
    std::string pdfText(const std::string& name) const {
        return run({"pdftotext", "-layout", output(name), "-"}).output;
    }
    std::vector<std::string> toPdf(std::vector<std::string> more = {}) const {
        more.insert(more.end(), {"--ausgabe", output("l.pdf")});
        return more;
    }
    std::vector<std::string> toData(const std::string& format, std::vector<std::string> more = {}) const {
        more.insert(more.end(), {"--format", format, "--ausgabe", output("l." + format)});
        return more;
    }
    /// The files of that beginning in the test's folder.
    std::size_t filesNamed(const std::string& beginning) const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            count += entry.path().filename().string().starts_with(beginning) ? 1 : 0;
        return count;
    }
};

} // namespace kvtdruck::testing
