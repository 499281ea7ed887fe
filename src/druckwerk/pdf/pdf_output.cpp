#include "druckwerk/pdf/pdf_output.h"

#include "druckwerk/common/fault.h"

#include <array>
#include <cstring>
#include <libdeflate.h>
#include <new>
#include <system_error>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kBufferSize = 1 << 16;
constexpr int kCompressionLevel = 1; // level 6 makes the files a tenth smaller and takes four times as long

} // namespace

std::string reference(int number) {
    return std::to_string(number) + " 0 R";
}

PdfOutput::PdfOutput(std::filesystem::path file) : name_(std::move(file)) {
    try {
        file_ = std::make_unique<AtomicFile>(name_);
    } catch (const std::system_error& error) {
        throw outputFault(name_, error);
    }
    compressor_ = libdeflate_alloc_compressor(kCompressionLevel);
    if (compressor_ == nullptr)
        throw std::bad_alloc();
    buffer_.reserve(kBufferSize * 2);
    write("%PDF-1.7\n%\xe2\xe3\xcf\xd3\n");
}

PdfOutput::~PdfOutput() {
    beside_.reset();
    libdeflate_free_compressor(compressor_);
}

void PdfOutput::workBeside() {
    if (beside_ || std::thread::hardware_concurrency() < 2)
        return;
    try {
        beside_ = std::make_unique<TaskQueue<Piece>>(
            [this](const Piece& piece) { put(piece.kind, piece.number, piece.entries, piece.data); });
    } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch): without a thread it is done as before
    }
}

void PdfOutput::take(Kind kind, int number, std::string_view entries, std::string_view data) {
    if (!beside_)
        return put(kind, number, entries, data);
    beside_->add([&](Piece& piece) {
        piece.kind = kind;
        piece.number = number;
        piece.entries = entries;
        piece.data = data;
    });
}

void PdfOutput::put(Kind kind, int number, std::string_view entries, std::string_view data) {
    const auto index = static_cast<std::size_t>(number) - 1;
    if (index >= offsets_.size())
        offsets_.resize(index + 1);
    offsets_[index] = position_;
    write(std::to_string(number) + " 0 obj\n");
    if (kind == Kind::Object) {
        write(data);
        write("\nendobj\n");
    } else if (kind == Kind::RawStream) {
        putStream(entries, data);
    } else {
        compressed_.resize(libdeflate_zlib_compress_bound(compressor_, data.size()));
        const std::size_t size =
            libdeflate_zlib_compress(compressor_, data.data(), data.size(), compressed_.data(), compressed_.size());
        putStream(std::string(entries) + "/Filter/FlateDecode", std::string_view(compressed_).substr(0, size));
    }
}

void PdfOutput::putStream(std::string_view entries, std::string_view data) {
    write("<<");
    write(entries);
    write("/Length " + std::to_string(data.size()) + ">>stream\n");
    write(data);
    write("\nendstream\nendobj\n");
}

void PdfOutput::write(std::string_view data) {
    buffer_ += data;
    position_ += data.size();
    if (buffer_.size() >= kBufferSize)
        flush();
}

void PdfOutput::flush() {
    // Eight bytes at a time; the hash only has to tell documents apart and to be the same for the same document.
    std::size_t i = 0;
    for (; i + 8 <= buffer_.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, buffer_.data() + i, 8);
        hash_ = (hash_ ^ word) * 0x9E3779B97F4A7C15U;
        hash_ ^= hash_ >> 29;
    }
    for (; i < buffer_.size(); ++i)
        hash_ = (hash_ ^ static_cast<unsigned char>(buffer_[i])) * 0x100000001b3U;
    try {
        file_->write(buffer_);
    } catch (const std::system_error& error) {
        throw outputFault(name_, error);
    }
    buffer_.clear();
}

void PdfOutput::writeObject(int number, std::string_view body) {
    take(Kind::Object, number, {}, body);
}

void PdfOutput::writeStream(int number, std::string_view entries, std::string_view data) {
    take(Kind::Stream, number, entries, data);
}

void PdfOutput::writeRawStream(int number, std::string_view entries, std::string_view data) {
    take(Kind::RawStream, number, entries, data);
}

std::unique_ptr<AtomicFile> PdfOutput::finish(int catalog, int info) {
    if (beside_)
        beside_->finish();
    offsets_.resize(static_cast<std::size_t>(objects_));
    const std::uint64_t start = position_;
    write("xref\n0 " + std::to_string(offsets_.size() + 1) + "\n0000000000 65535 f \n");
    std::array<char, 32> entry{};
    for (const std::uint64_t offset : offsets_) {
        // An object that was never written is listed as free.
        std::snprintf(entry.data(), entry.size(), offset == 0 ? "%010llu 65535 f \n" : "%010llu 00000 n \n",
                      static_cast<unsigned long long>(offset));
        write(entry.data());
    }
    flush();
    std::array<char, 33> id{};
    const unsigned long long first = hash_;
    const unsigned long long second = hash_ * 0xBF58476D1CE4E5B9U + offsets_.size();
    std::snprintf(id.data(), id.size(), "%016llx%016llx", first, second);
    write("trailer\n<</Size " + std::to_string(offsets_.size() + 1) + "/Root " + reference(catalog) + "/Info " +
          reference(info) + "/ID[<" + id.data() + "><" + id.data() + ">]>>\nstartxref\n" + std::to_string(start) +
          "\n%%EOF\n");
    flush();
    return std::move(file_);
}

} // namespace kvtdruck::druckwerk
