// One document: a list of a company with its selection, and everything that the component needs around it.
#pragma once

#include "cli/console.h"
#include "cli/options.h"
#include "cli/outcome.h"

#include <functional>

namespace kvtdruck::cli {

/// What a document holds, and where it goes.
struct PrintRequest {
    const catalog::ReportEntry* report = nullptr;
    double company = 0;
    catalog::Selections ranges;                  ///< as `catalog::rangesOf` gives them
    std::optional<std::filesystem::path> values; ///< the file of values
    /// Empty: to a printer, a viewer or a designer. A check prints into it, or into nothing.
    std::filesystem::path output;
    bool continuesRecord = false; ///< the record of calls goes on in its file
    /// One that it goes into with others, and what the outline has around its entries there.
    std::shared_ptr<druckwerk::OpenDocument> document{};
    std::vector<std::string> chapter{};
    /// What is printed with instead of the list's layout.
    std::optional<druckwerk::LayoutText> layout{};
    /// Takes what the list defines; no designer is opened then.
    std::function<void(const std::vector<druckwerk::Definition>&)> defined{};
    /// Takes the layout that a designer is opened on, and then each time that it is saved.
    std::function<void(const std::string& layout)> saved{};
};

/// Prints, previews, designs or checks what `request` names; gives the program's exit code. Messages go to
/// `console`. May throw what the file system, the data access or a file of values throws before anything is
/// printed.
int runReport(const Options& options, const PrintRequest& request, Console& console);

} // namespace kvtdruck::cli
