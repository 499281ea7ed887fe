// A table of a workbook's plan, filled as the records come.
#pragma once

#include "druckwerk/exits/record_writer.h"
#include "druckwerk/exits/sheet_formula.h"
#include "druckwerk/exits/workbook_plan.h"
#include "druckwerk/exits/xlsx_sheet.h"

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// What the report has defined, by name.
class NamedCells {
  public:
    void setVariables(std::span<const NamedValue> values);
    void setFields(std::span<const NamedValue> values) { fields_.set(values); }

    /// The field of that name, else the variable; nullptr where there is none.
    const NamedValue* find(std::string_view name) const;
    /// Its text; empty where there is none.
    StringView text(std::string_view name) const;

  private:
    struct Values {
        std::span<const NamedValue> values;
        std::vector<String> names;
        std::map<std::string, std::size_t, std::less<>> places;
        void set(std::span<const NamedValue> given);
        const NamedValue* find(std::string_view name) const;
    };

    std::vector<NamedValue> kept_; ///< variables hold for the records that follow
    Values variables_;
    Values fields_;
};

/// What a table is given from outside.
struct TableSurroundings {
    const NamedCells& names;
    Contents& contents;
    std::string selection; ///< what was selected, as a text
    /// Adds a sheet to the workbook, which owns it.
    std::function<Sheet&(std::string name, SheetLook look)> addSheet;
    /// A text as a cell can hold it.
    std::function<StringView(StringView)> fitting;
};

/// One table. Its sheet begins with its first row; a full one is closed and continued on another.
class SheetTable {
  public:
    SheetTable(const PlanTable& plan, TableSurroundings surroundings)
        : plan_(plan), around_(std::move(surroundings)) {}

    /// Takes new variables.
    void section();
    /// Takes a record.
    void record();
    /// Writes the sums.
    void finish();

  private:
    /// What a row stands for besides its record.
    struct Row {
        int month = 0;
        const PlanFact* fact = nullptr;
    };
    void months();
    void facts();
    void row(const Row& row);
    std::optional<double> number(std::string_view name) const;
    std::string sourceOf(const PlanColumn& column, const Row& row) const;
    std::optional<String> textOf(std::string_view source, const Row& row) const;
    void cell(std::size_t at, const Row& row);
    void value(std::size_t at, const NamedValue& value, CellFormat format);
    void formula(std::size_t at, std::string_view formula, CellFormat format, bool total);
    std::optional<std::size_t> columnOf(std::string_view source) const;

    void begin();
    String units() const;
    void headings(const SheetLook& look);
    void close();

    const PlanTable& plan_;
    TableSurroundings around_;
    Sheet* sheet_ = nullptr;
    int sheets_ = 0;
    std::vector<const PlanColumn*> columns_;
    std::vector<std::optional<double>> numbers_; ///< of the row in hand, by column
    std::vector<double> sums_;
    std::string lastFacts_;
};

} // namespace kvtdruck::druckwerk
