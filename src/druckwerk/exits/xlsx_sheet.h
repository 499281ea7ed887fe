// One sheet of a workbook, as ECMA-376 describes it.
#pragma once

#include "druckwerk/exits/zip_writer.h"
#include "values/text.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace kvtdruck::druckwerk {

/// What a cell, a row and a sheet can hold (ECMA-376 leaves it to Excel, whose documented limits these are:
/// https://support.microsoft.com/office/excel-specifications-and-limits-1672b34d-7043-467e-8e27-269d656771c3).
inline constexpr std::size_t kLongestCell = 32767;
inline constexpr std::size_t kMostColumns = 16384;
inline constexpr std::size_t kMostRows = 1048576;

/// The first line of every part of a workbook, and the names of its vocabularies.
inline constexpr std::string_view kXmlHead = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
inline constexpr std::string_view kMainNames = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

/// "A" to "XFD".
std::string columnName(std::size_t column);

/// The rows that a sheet has so far, packed. Every operation may throw a `std::runtime_error` with a German
/// message, or a `std::system_error` where the disk refuses.
class Sheet {
  public:
    Sheet(std::string name, std::size_t number);

    const std::string& name() const { return name_; }
    std::size_t rows() const { return rows_; }

    void beginRow();
    void number(double value);
    void text(StringView value, bool heading);
    void endRow();
    const ZipEntry& finish();

  private:
    void beginCell();

    std::string name_;
    ZipEntry entry_;
    std::size_t rows_ = 0;
    std::size_t columns_ = 0;
    std::string row_;
};

} // namespace kvtdruck::druckwerk
