// Files that take a report's records as data: one writer for each format.
#pragma once

#include "druckwerk/exits/data_export.h"
#include "druckwerk/expression/contents.h"
#include "platform/posix/atomic_file.h"
#include "values/text.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// A variable or field with the value that the report gave it.
struct NamedValue {
    String name;
    String text;
    bool numeric = false;
    bool operator==(const NamedValue&) const = default;
};

/// Writes the content of one file. Every operation may throw a `std::runtime_error` with a German message in UTF-8.
class RecordWriter {
  public:
    virtual ~RecordWriter() = default;
    /// The variables that hold for the records to come.
    virtual void variables(std::span<const NamedValue> values) = 0;
    /// One record.
    virtual void record(std::span<const NamedValue> values) = 0;
    /// Writes what ends the content.
    virtual void finish() = 0;
};

/// The number that a numeric value holds; an empty value and a text that is no number hold none.
std::optional<double> numberOf(const NamedValue& value, Contents& contents);

/// Whether the names of `values` differ from `known`, which then takes them.
bool takeNames(std::vector<String>& known, std::span<const NamedValue> values);

/// A writer for `format` on `file`, which outlives it and is committed by its owner; `locale` is the notation of
/// numbers, `warn` takes what is no number in it and what a format can't hold.
std::unique_ptr<RecordWriter> openWriter(DataFormat format, AtomicFile& file, const Locale& locale,
                                         const std::function<void(std::string_view)>& warn, Formulas formulas);

} // namespace kvtdruck::druckwerk
