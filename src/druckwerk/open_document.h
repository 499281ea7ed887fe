// The document that the jobs of one factory share.
#pragma once

#include "druckwerk/page/document.h"
#include "platform/posix/temporary_folder.h"

#include <filesystem>
#include <memory>
#include <optional>

#include <unistd.h>

namespace kvtdruck::druckwerk {

/// A folder for a document that goes on to a printer. Raises a Fault where there is no place for it.
std::unique_ptr<TemporaryFolder> newTemporaryFolder();

class OpenDocument {
  public:
    bool isOpen() const { return pdf_.has_value(); }
    PdfDocument& pdf() { return *pdf_; }
    /// Whether it goes to a printer: then it lies in a temporary folder.
    bool isForPrinter() const { return folder_ != nullptr; }
    const std::filesystem::path& file() const { return file_; }
    const DocumentInfo& info() const { return info_; }

    void open(const std::filesystem::path& file, std::unique_ptr<TemporaryFolder> folder, PdfLevel level,
              DocumentInfo info, const FontLibrary::Warn& warn) {
        drop();
        folder_ = std::move(folder);
        file_ = file;
        info_ = std::move(info);
        pdf_.emplace(file_, level, warn);
    }
    void drop() {
        pdf_.reset();
        if (folder_) { // which needs memory to empty itself, and there may be none
            ::unlink(file_.c_str());
            ::rmdir(folder_->path().c_str());
        }
        folder_.reset();
    }

  private:
    std::unique_ptr<TemporaryFolder> folder_;
    std::filesystem::path file_;
    DocumentInfo info_;
    std::optional<PdfDocument> pdf_;
};

} // namespace kvtdruck::druckwerk
