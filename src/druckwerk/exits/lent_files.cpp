#include "druckwerk/exits/lent_files.h"

#include "druckwerk/svg/composition.h"
#include "platform/posix/atomic_file.h"
#include "platform/posix/input_file.h"

namespace kvtdruck::druckwerk {

namespace fs = std::filesystem;

LentFiles::LentFiles(const DesignRequest& request, const std::string& svg) {
    for (const auto& name : sharedFilesOf(svg))
        lend(request, name);
}

void LentFiles::lend(const DesignRequest& request, const std::string& name) {
    std::error_code ignored;
    const fs::path own = request.layout.parent_path() / name;
    const fs::path behind = request.behind.empty() ? fs::path() : fileBelow({request.behind}, name);
    if (fs::exists(own, ignored) || !fs::is_regular_file(behind, ignored))
        return;
    auto content = readInput(behind);
    if (own.extension() == ".svg")
        content = withSheetsShown(content, {request.layout.parent_path(), request.behind});
    fs::create_directories(own.parent_path(), ignored);
    writeAtomically(own, content, AtomicFile::Access::Mask);
    files_.emplace_back(own, std::move(content));
}

LentFiles::~LentFiles() {
    for (const auto& [file, content] : files_)
        try {
            if (readInput(file) == content)
                fs::remove(file);
        } catch (const std::system_error&) { // whoever has taken it away need not put it back
        }
}

} // namespace kvtdruck::druckwerk
