// A PDF file written from front to back: objects go out as they are finished, only their offsets stay in memory.
#pragma once

#include "platform/posix/atomic_file.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct libdeflate_compressor;

namespace kvtdruck::druckwerk {

/// How an object refers to the object `number`.
std::string reference(int number);

/// Raises a Fault where the file can't be written.
class PdfOutput {
  public:
    explicit PdfOutput(std::filesystem::path file);
    ~PdfOutput();
    PdfOutput(const PdfOutput&) = delete;
    PdfOutput& operator=(const PdfOutput&) = delete;

    /// A number for an object that is written later.
    int allocate();
    /// Writes the object `number`; `body` is its PDF syntax.
    void writeObject(int number, std::string_view body);
    /// Writes a compressed stream; `entries` are further entries of its dictionary.
    void writeStream(int number, std::string_view entries, std::string_view data);
    /// Writes a stream as it is; `entries` name its filter.
    void writeRawStream(int number, std::string_view entries, std::string_view data);

    /// Writes what ends the content; gives the file, which is complete and not yet in its place.
    std::unique_ptr<AtomicFile> finish(int catalog, int info);

  private:
    void write(std::string_view data);
    void flush();
    void beginObject(int number);

    std::filesystem::path name_;
    std::unique_ptr<AtomicFile> file_;
    std::string buffer_;
    std::string compressed_;
    std::uint64_t position_ = 0;
    std::uint64_t hash_ = 0xcbf29ce484222325U;
    std::vector<std::uint64_t> offsets_;
    libdeflate_compressor* compressor_;
};

} // namespace kvtdruck::druckwerk
