// A PDF file written from front to back: objects go out as they are finished, only their offsets stay in memory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

struct libdeflate_compressor;

namespace kvtdruck::druckwerk {

/// The file under a temporary name in its own folder; it takes its name when it is complete, and is removed when it
/// is dropped before. Raises a Fault where it can't be written.
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

    /// Writes what closes the file and gives it its name.
    void finish(int catalog, int info);

  private:
    void write(std::string_view data);
    void flush();
    void beginObject(int number);
    [[noreturn]] void fail(int systemError) const;

    std::filesystem::path file_;
    std::filesystem::path temporary_;
    int descriptor_ = -1;
    std::string buffer_;
    std::string compressed_;
    std::uint64_t position_ = 0;
    std::uint64_t hash_ = 0xcbf29ce484222325U;
    std::vector<std::uint64_t> offsets_;
    libdeflate_compressor* compressor_;
};

} // namespace kvtdruck::druckwerk
