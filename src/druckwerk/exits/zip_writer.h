// ZIP archives (https://pkware.cachefly.net/webdocs/casestudies/APPNOTE.TXT), written from front to back.
#pragma once

#include "platform/posix/spool_file.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// One file of an archive while it is written: compressed at once and kept in a file without a name. Every
/// operation raises std::system_error where the disk refuses.
class ZipEntry {
  public:
    explicit ZipEntry(std::string name);
    ~ZipEntry();

    void write(std::string_view data);
    /// Nothing is written afterwards.
    void finish();

  private:
    friend class ZipWriter;
    struct Compressor;

    void compress(std::string_view data, int mode);

    std::string name_;
    SpoolFile spool_;
    std::unique_ptr<Compressor> compressor_;
    std::uint64_t size_ = 0;
    std::uint64_t compressedSize_ = 0;
    std::uint32_t checksum_ = 0;
};

class ZipWriter {
  public:
    using Sink = std::function<void(std::string_view)>;
    explicit ZipWriter(Sink sink) : sink_(std::move(sink)) {}

    /// Appends a finished entry. Raises std::runtime_error where the archive grows beyond what the format holds.
    void add(const ZipEntry& entry);
    void add(const std::string& name, std::string_view content);
    /// Writes the directory, which ends the archive.
    void finish();

  private:
    void write(std::string_view data);

    Sink sink_;
    std::uint64_t position_ = 0;
    std::string directory_;
    std::uint16_t entries_ = 0;
};

} // namespace kvtdruck::druckwerk
