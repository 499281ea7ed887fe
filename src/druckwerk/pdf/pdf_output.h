// A PDF file written from front to back: objects go out as they are finished, only their offsets stay in memory.
#pragma once

#include "druckwerk/pdf/task_queue.h"
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

    /// From now on objects are compressed and written beside the calling thread, in the same order, where there is
    /// a second processor. A failure then shows with a later object, or at the end.
    void workBeside();

    /// A number for an object that is written later.
    int allocate() { return ++objects_; }
    /// Writes the object `number`; `body` is its PDF syntax.
    void writeObject(int number, std::string_view body);
    /// Writes a compressed stream; `entries` are further entries of its dictionary.
    void writeStream(int number, std::string_view entries, std::string_view data);
    /// Writes a stream as it is; `entries` name its filter.
    void writeRawStream(int number, std::string_view entries, std::string_view data);
    /// Writes the object `number`, which is no stream, together with others in one compressed stream (ISO 32000-1,
    /// 7.5.7): for objects that are small and many.
    void packObject(int number, std::string_view body);

    /// Writes what ends the content; gives the file, which is complete and not yet in its place.
    std::unique_ptr<AtomicFile> finish(int catalog, int info);

  private:
    enum class Kind : std::uint8_t { Object, Stream, RawStream };
    struct Piece {
        Kind kind = Kind::Object;
        int number = 0;
        std::string entries;
        std::string data;
        std::vector<int> packed; ///< the objects within the stream
    };
    /// Objects that wait to be written as one stream.
    struct Pack {
        std::vector<int> numbers;
        std::string index; ///< number and place of each
        std::string bodies;
    };

    void take(Kind kind, int number, std::string_view entries, std::string_view data,
              const std::vector<int>& packed = {});
    void put(const Piece& piece);
    void note(int number, std::uint64_t place);
    void putCompressed(std::string_view entries, std::string_view data);
    void putStream(std::string_view entries, std::string_view data);
    void writePack();
    void writeTable(const std::string& trailer);
    void writeTableStream(const std::string& trailer);
    std::string identifier() const;
    void write(std::string_view data);
    void flush();

    std::filesystem::path name_;
    std::unique_ptr<AtomicFile> file_;
    std::string buffer_;
    std::unique_ptr<char[]> compressed_; ///< the room of a stream
    std::size_t room_ = 0;
    std::uint64_t position_ = 0;
    std::uint64_t hash_ = 0xcbf29ce484222325U;
    int objects_ = 0;
    /// Where each object is: its offset, or `kPacked` with its stream's number and its place in there. 0: nowhere.
    std::vector<std::uint64_t> places_;
    Piece piece_;
    Pack pack_;
    bool hasPacks_ = false;
    libdeflate_compressor* compressor_;
    std::unique_ptr<TaskQueue<Piece>>
        beside_; ///< where there is one, all of the file but `objects_` is its thread's
};

} // namespace kvtdruck::druckwerk
