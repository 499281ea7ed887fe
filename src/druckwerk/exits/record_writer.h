// Files that take a report's records as data: one writer for each format.
#pragma once

#include "druckwerk/exits/data_export.h"
#include "values/text.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string_view>

namespace kvtdruck::druckwerk {

/// A variable or field with the value that the report gave it.
struct NamedValue {
    String name;
    String text;
    bool numeric = false;
    bool operator==(const NamedValue&) const = default;
};

/// Writes one file. Every operation may throw a `std::runtime_error` with a German message in UTF-8.
class RecordWriter {
  public:
    virtual ~RecordWriter() = default;
    /// The variables that hold for the records to come.
    virtual void variables(std::span<const NamedValue> values) = 0;
    /// One record.
    virtual void record(std::span<const NamedValue> values) = 0;
    /// Completes the file.
    virtual void finish() = 0;
};

/// A writer for `format` on the new file `file`; `locale` is the notation of numbers, `warn` takes what a format
/// can't hold.
std::unique_ptr<RecordWriter> openWriter(DataFormat format, const std::filesystem::path& file, const Locale& locale,
                                         std::function<void(std::string_view)> warn);

} // namespace kvtdruck::druckwerk
