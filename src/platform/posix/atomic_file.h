// A file that is complete or not there.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kvtdruck {

/// Takes what is written to it and gives it its place when it is committed; until then, and without that, what
/// stood there before stays as it was. Meanwhile the content has no name where the file system allows that, or a
/// random one beside its place; it is gone with the object, and without a name also where the process is killed.
///
/// A file that is replaced gives its owner, group and mode to the new one. A link stays one and the file behind it
/// is replaced; a link of another user than this one or root is refused. What is no plain file (a device, a pipe, a
/// descriptor of this process such as /dev/stdout) is written to at once and never replaced; "-" is standard
/// output.
///
/// Every operation raises std::system_error where it fails.
class AtomicFile {
  public:
    /// Who may read a file that is new: documents hold personnel data and are their owner's alone, anything else is
    /// created as the user's mask says.
    enum class Access { Owner, Mask };

    explicit AtomicFile(const std::filesystem::path& target, Access access = Access::Owner);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// The file that it becomes.
    const std::filesystem::path& target() const { return target_; }

    /// Small pieces reach the file in larger ones.
    void write(std::string_view data);
    /// Gives the file its place, with all its content on the disk. Nothing can be written afterwards.
    void commit();

  private:
    /// What is closed and removed at any end.
    struct Unfinished {
        Unfinished() = default;
        Unfinished(const Unfinished&) = delete;
        Unfinished& operator=(const Unfinished&) = delete;
        ~Unfinished();
        int descriptor = -1;
        std::string name; ///< empty while the content has none; set without memory, so that it is never forgotten
    };

    void openInPlace(int descriptor);
    void create(Access access);
    void takeAttributes(const std::filesystem::path& replaced, Access access) const;
    void flush();
    void nameContent();

    std::filesystem::path target_;
    Unfinished unfinished_;
    std::string buffer_;
    bool inPlace_ = false;
};

/// Writes `text` as the whole content of `target`.
void writeAtomically(const std::filesystem::path& target, std::string_view text, AtomicFile::Access access);

/// Writes all of `data` to a descriptor.
void writeAll(int descriptor, std::string_view data);

/// Whether two paths lead to one file; false where either is not there.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace kvtdruck
