// One sheet of a workbook, as ECMA-376 describes it.
#pragma once

#include "druckwerk/exits/xlsx_styles.h"
#include "druckwerk/exits/zip_writer.h"
#include "values/text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// How a sheet with a table is shown and printed.
struct SheetLook {
    std::vector<unsigned> widths; ///< of the columns, in digits
    std::size_t headRow = 0;      ///< the row of headings, above which nothing scrolls; each page repeats it
    bool landscape = false;
};

/// The rows that a sheet has so far, packed. Every operation may throw a `std::runtime_error` with a German
/// message, or a `std::system_error` where the disk refuses.
class Sheet {
  public:
    Sheet(std::string name, std::size_t number, std::optional<SheetLook> look = {});

    const std::string& name() const { return name_; }
    /// Of its part in the archive.
    std::size_t number() const { return number_; }
    const std::optional<SheetLook>& look() const { return look_; }
    std::size_t rows() const { return rows_; }

    /// `height` in points; 0 for what the text takes.
    void beginRow(unsigned height = 0);
    void number(double value, CellStyle style = kPlain);
    void text(StringView value, CellStyle style = kPlain);
    /// A formula with the value that it has.
    void formula(std::string_view formula, std::optional<double> value, CellStyle style);
    void empty(CellStyle style);
    void endRow();

    /// Lets the rows below the headings, up to the last one so far, be filtered.
    void filterRows();
    /// The cells that can be filtered, such as "A6:K34"; empty without a filter.
    const std::string& filter() const { return filter_; }

    const ZipEntry& finish();

  private:
    void beginCell(CellStyle style);

    std::string name_;
    std::size_t number_;
    std::optional<SheetLook> look_;
    ZipEntry entry_;
    std::size_t rows_ = 0;
    std::size_t columns_ = 0;
    std::string row_;
    std::string filter_;
};

} // namespace kvtdruck::druckwerk
