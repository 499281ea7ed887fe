#include "druckwerk/exits/zip_writer.h"

#include <array>
#include <new>
#include <stdexcept>
#include <zlib.h>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::uint64_t kLargest = 0xFFFFFFFE; // of sizes and places; 0xFFFFFFFF says that they stand elsewhere

void append16(std::string& out, std::uint32_t value) {
    out += static_cast<char>(value & 0xff);
    out += static_cast<char>(value >> 8 & 0xff);
}

void append32(std::string& out, std::uint64_t value) {
    append16(out, static_cast<std::uint32_t>(value & 0xffff));
    append16(out, static_cast<std::uint32_t>(value >> 16 & 0xffff));
}

} // namespace

struct ZipEntry::Compressor {
    Compressor() {
        // Raw data without zlib's own head.
        if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
            throw std::bad_alloc();
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { deflateEnd(&stream); }

    z_stream stream{};
};

ZipEntry::ZipEntry(std::string name) : name_(std::move(name)), compressor_(std::make_unique<Compressor>()) {}
ZipEntry::~ZipEntry() = default;

void ZipEntry::write(std::string_view data) {
    size_ += data.size();
    checksum_ = static_cast<std::uint32_t>(
        crc32_z(checksum_, reinterpret_cast<const unsigned char*>(data.data()), data.size()));
    compress(data, Z_NO_FLUSH);
}

void ZipEntry::finish() {
    compress({}, Z_FINISH);
    compressor_.reset();
}

void ZipEntry::compress(std::string_view data, int mode) {
    z_stream& stream = compressor_->stream;
    stream.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(data.data())); // zlib only reads it
    stream.avail_in = static_cast<unsigned>(data.size());
    std::array<char, 1 << 14> out; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by zlib
    do {
        stream.next_out = reinterpret_cast<unsigned char*>(out.data());
        stream.avail_out = out.size();
        if (deflate(&stream, mode) == Z_STREAM_ERROR)
            throw std::runtime_error("Die Daten lassen sich nicht packen");
        const std::size_t packed = out.size() - stream.avail_out;
        compressedSize_ += packed;
        spool_.write({out.data(), packed});
    } while (stream.avail_out == 0);
}

void ZipWriter::write(std::string_view data) {
    position_ += data.size();
    sink_(data);
}

void ZipWriter::add(const ZipEntry& entry) {
    if (entry.size_ > kLargest || entry.compressedSize_ + position_ > kLargest)
        throw std::runtime_error("Die Daten sind für das Dateiformat zu groß");
    std::string common;           // what an entry's head and its line of the directory have in common
    append16(common, 20);         // version 2.0 reads it
    append16(common, 1 << 11);    // names are UTF-8
    append16(common, 8);          // deflated
    append16(common, 0);          // no time, so that the same data give the same file
    append16(common, 1 << 5 | 1); // 1 January 1980
    append32(common, entry.checksum_);
    append32(common, entry.compressedSize_);
    append32(common, entry.size_);
    append16(common, static_cast<std::uint32_t>(entry.name_.size()));
    append16(common, 0); // nothing extra
    const std::uint64_t begin = position_;
    write("PK\3\4" + common + entry.name_);
    entry.spool_.read([&](std::string_view piece) { write(piece); });
    if (position_ != begin + 4 + common.size() + entry.name_.size() + entry.compressedSize_)
        throw std::runtime_error("Eine Zwischendatei ist beschädigt");
    directory_ += "PK\1\2";
    append16(directory_, 20);
    directory_ += common;
    append16(directory_, 0); // no comment
    append16(directory_, 0); // on this disk
    append16(directory_, 0);
    append32(directory_, 0);
    append32(directory_, begin);
    directory_ += entry.name_;
    ++entries_;
}

void ZipWriter::add(const std::string& name, std::string_view content) {
    ZipEntry entry(name);
    entry.write(content);
    entry.finish();
    add(entry);
}

void ZipWriter::finish() {
    const std::uint64_t begin = position_;
    std::string end = "PK\5\6";
    append32(end, 0); // one disk
    append16(end, entries_);
    append16(end, entries_);
    append32(end, directory_.size());
    append32(end, begin);
    append16(end, 0); // no comment
    write(directory_ + end);
}

} // namespace kvtdruck::druckwerk
