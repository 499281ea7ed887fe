// A document between the jobs that share it.
#pragma once

#include "druckwerk/page/document.h"
#include "platform/posix/temporary_folder.h"

#include <memory>
#include <optional>

namespace kvtdruck::druckwerk {

class OpenDocument {
  public:
    bool isOpen() const { return pdf_.has_value(); }
    PdfDocument& pdf() { return *pdf_; }
    /// Whether it goes to a printer: then it lies in a temporary folder.
    bool isForPrinter() const { return folder_ != nullptr; }
    const std::filesystem::path& file() const { return file_; }
    const DocumentInfo& info() const { return info_; }

    void open(const std::filesystem::path& file, std::unique_ptr<TemporaryFolder> folder, DocumentInfo info,
              const FontLibrary::Warn& warn) {
        drop();
        folder_ = std::move(folder);
        file_ = file;
        info_ = std::move(info);
        pdf_.emplace(file_, warn);
    }
    void drop() {
        pdf_.reset();
        folder_.reset();
    }

  private:
    std::unique_ptr<TemporaryFolder> folder_;
    std::filesystem::path file_;
    DocumentInfo info_;
    std::optional<PdfDocument> pdf_;
};

} // namespace kvtdruck::druckwerk
