// The host's parameter array.
#pragma once

#include "dataaccess/member.h"
#include "dataaccess/members.h"
#include "module/component_state.h"

namespace kvtdruck {

/// The host's parameter array (`XArrayDB`), addressed by row and column.
class ParameterCells {
  public:
    ParameterCells(ComponentState& state, ObjectRef object) : state_(state), object_(std::move(object)) {}

    /// The cell's value; run-time error 9 where the array has no such cell.
    Variant Value(std::int32_t row, std::int32_t column);
    /// Changes the cell in the host's array.
    void Value(std::int32_t row, std::int32_t column, const Variant& value);
    /// The size of a dimension (1 = rows).
    std::int32_t Count(std::int32_t dimension);

    // The cell's value compared or converted, as Automation does it.
    bool is(std::int32_t row, std::int32_t column, bool truth);
    bool is(std::int32_t row, std::int32_t column, double number);
    float single(std::int32_t row, std::int32_t column);
    String text(std::int32_t row, std::int32_t column);

    /// Puts the selection of row 0 into its normal form, in the host's own array: without the all-flag in column 0,
    /// two bounds of 0 set it, a missing lower bound takes the upper one, and a lower bound that is given always
    /// overwrites the upper one. So a selection means everything or exactly one, never a range; hosts rely on it.
    void normaliseRange();

  private:
    ComponentState& state_;
    ObjectRef object_;
    Member value_{kValue, ValueType::Variant};
    Member count_{kCount, ValueType::Long};
};

} // namespace kvtdruck
