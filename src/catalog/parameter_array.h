// The host's parameter array, as the component calls it: `Value(row, column)` and `Count(dimension)`.
#pragma once

#include "values/object.h"
#include "values/variant.h"

#include <cstddef>
#include <vector>

namespace kvtdruck::catalog {

/// A two-dimensional array of variants. A cell outside of it is run-time error 9.
class ParameterArray final : public Object {
  public:
    /// An array of Empty cells.
    ParameterArray(std::size_t rows, std::size_t columns) : columns_(columns), cells_(rows * columns) {}

    std::size_t rows() const { return columns_ ? cells_.size() / columns_ : 0; }
    std::size_t columns() const { return columns_; }
    Variant& cell(std::size_t row, std::size_t column) { return cells_.at(row * columns_ + column); }

    MemberId idOf(StringView name) override;
    Variant call(MemberId member, std::span<const Variant> arguments) override;
    void put(MemberId member, std::span<const Variant> arguments, const Variant& value) override;

  private:
    Variant& addressed(std::span<const Variant> arguments);

    std::size_t columns_;
    std::vector<Variant> cells_;
};

} // namespace kvtdruck::catalog
