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
constexpr int kCompressionLevel = 1;     // level 6 makes the files a tenth smaller and takes four times as long
constexpr std::size_t kMostPacked = 200; // objects in one stream; a place in there fits into a byte
constexpr unsigned kIndexBits = 8;
constexpr std::uint64_t kPacked = std::uint64_t{1} << 63;
constexpr std::size_t kPlaceBytes = 5; // of an offset in the table of objects, up to a terabyte
constexpr std::size_t kLine = 8;       // of that table: its predictor, the kind, the place, the place in a stream
static_assert(kLine == 3 + kPlaceBytes && kLine == sizeof(std::uint64_t));

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
        beside_ = std::make_unique<TaskQueue<Piece>>([this](const Piece& piece) { put(piece); });
    } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch): without a thread it is done as before
    }
}

void PdfOutput::take(Kind kind, int number, std::string_view entries, std::string_view data,
                     const std::vector<int>& packed) {
    const auto fill = [&](Piece& piece) {
        piece.kind = kind;
        piece.number = number;
        piece.entries = entries;
        piece.data = data;
        piece.packed = packed;
    };
    if (beside_)
        return beside_->add(fill);
    fill(piece_);
    put(piece_);
}

void PdfOutput::note(int number, std::uint64_t place) {
    const auto index = static_cast<std::size_t>(number) - 1;
    if (index >= places_.size())
        places_.resize(index + 1);
    places_[index] = place;
}

void PdfOutput::put(const Piece& piece) {
    note(piece.number, position_);
    for (std::size_t i = 0; i < piece.packed.size(); ++i)
        note(piece.packed[i], kPacked | static_cast<std::uint64_t>(piece.number) << kIndexBits | i);
    write(std::to_string(piece.number) + " 0 obj\n");
    if (piece.kind == Kind::Object) {
        write(piece.data);
        write("\nendobj\n");
    } else if (piece.kind == Kind::RawStream) {
        putStream(piece.entries, piece.data);
    } else {
        putCompressed(piece.entries, piece.data);
    }
}

void PdfOutput::putCompressed(std::string_view entries, std::string_view data) {
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor_, data.size());
    if (bound > room_) {
        compressed_ = std::make_unique_for_overwrite<char[]>(bound); // what is not written takes no memory
        room_ = bound;
    }
    const std::size_t size =
        libdeflate_zlib_compress(compressor_, data.data(), data.size(), compressed_.get(), room_);
    putStream(std::string(entries) + "/Filter/FlateDecode", {compressed_.get(), size});
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

void PdfOutput::packObject(int number, std::string_view body) {
    pack_.numbers.push_back(number);
    pack_.index += std::to_string(number);
    pack_.index += ' ';
    pack_.index += std::to_string(pack_.bodies.size());
    pack_.index += ' ';
    pack_.bodies += body;
    pack_.bodies += ' ';
    if (pack_.numbers.size() == kMostPacked)
        writePack();
}

void PdfOutput::writePack() {
    if (pack_.numbers.empty())
        return;
    hasPacks_ = true;
    take(Kind::Stream, allocate(),
         "/Type/ObjStm/N " + std::to_string(pack_.numbers.size()) + "/First " + std::to_string(pack_.index.size()),
         pack_.index + pack_.bodies, pack_.numbers);
    pack_.numbers.clear();
    pack_.index.clear();
    pack_.bodies.clear();
}

/// The document's id, by all that was written.
std::string PdfOutput::identifier() const {
    std::array<char, 33> id{};
    const unsigned long long first = hash_;
    const unsigned long long second = hash_ * 0xBF58476D1CE4E5B9U + places_.size();
    std::snprintf(id.data(), id.size(), "%016llx%016llx", first, second);
    return std::string("/ID[<") + id.data() + "><" + id.data() + ">]";
}

void PdfOutput::writeTable(const std::string& trailer) {
    write("xref\n0 " + std::to_string(places_.size() + 1) + "\n0000000000 65535 f \n");
    std::array<char, 32> entry{};
    for (const std::uint64_t offset : places_) {
        // An object that was never written is listed as free.
        std::snprintf(entry.data(), entry.size(), offset == 0 ? "%010llu 65535 f \n" : "%010llu 00000 n \n",
                      static_cast<unsigned long long>(offset));
        write(entry.data());
    }
    flush();
    write("trailer\n<</Size " + std::to_string(places_.size() + 1) + trailer + identifier() + ">>");
}

/// Objects within streams are listed in a stream only (ISO 32000-1, 7.5.8). Each line is written as what it differs
/// from the one before by (7.4.4.4, predictor 12), which is almost nothing, and in the place of what it is made of:
/// there may be a million of them.
void PdfOutput::writeTableStream(const std::string& trailer) {
    const int number = allocate();
    note(number, position_);
    flush();
    const std::string entries = "/Type/XRef/Size " + std::to_string(places_.size() + 1) + "/W[1 " +
                                std::to_string(kPlaceBytes) + " 1]/DecodeParms<</Predictor 12/Columns " +
                                std::to_string(kLine - 1) + ">>" + trailer + identifier();
    places_.insert(places_.begin(), 0);
    std::array<unsigned char, kLine> before{};
    for (std::uint64_t& place : places_) {
        const bool packed = (place & kPacked) != 0;
        const std::uint64_t where = packed ? (place & ~kPacked) >> kIndexBits : place;
        std::array<unsigned char, kLine> line{};
        line[1] = static_cast<unsigned char>(packed ? 2 : place == 0 ? 0 : 1);
        for (std::size_t i = 0; i < kPlaceBytes; ++i)
            line[1 + kPlaceBytes - i] = static_cast<unsigned char>(where >> (8 * i));
        line.back() = static_cast<unsigned char>(packed ? place & ((1U << kIndexBits) - 1) : 0);
        std::array<unsigned char, kLine> difference{2};
        for (std::size_t i = 1; i < kLine; ++i)
            difference[i] = static_cast<unsigned char>(line[i] - before[i]);
        before = line;
        std::memcpy(&place, difference.data(), kLine);
    }
    write(std::to_string(number) + " 0 obj\n");
    putCompressed(entries, {reinterpret_cast<const char*>(places_.data()), places_.size() * kLine});
}

std::unique_ptr<AtomicFile> PdfOutput::finish(int catalog, int info) {
    writePack();
    if (beside_)
        beside_->finish();
    places_.resize(static_cast<std::size_t>(objects_));
    const std::uint64_t start = position_;
    const std::string trailer = "/Root " + reference(catalog) + "/Info " + reference(info);
    if (hasPacks_)
        writeTableStream(trailer);
    else
        writeTable(trailer);
    write("\nstartxref\n" + std::to_string(start) + "\n%%EOF\n");
    flush();
    return std::move(file_);
}

} // namespace kvtdruck::druckwerk
