#include "dataaccess/parameter_cells.h"

namespace kvtdruck {

Variant ParameterCells::Value(std::int32_t row, std::int32_t column) {
    return value_.call(object_, state_.locale(), {row, column});
}

void ParameterCells::Value(std::int32_t row, std::int32_t column, const Variant& value) {
    value_.put(object_, {row, column}, value);
}

std::int32_t ParameterCells::Count(std::int32_t dimension) {
    return toLong(count_.call(object_, state_.locale(), {dimension}), state_.locale());
}

bool ParameterCells::is(std::int32_t row, std::int32_t column, bool truth) {
    return equals(Value(row, column), truth, state_.locale());
}

bool ParameterCells::is(std::int32_t row, std::int32_t column, double number) {
    return equals(Value(row, column), number, state_.locale());
}

float ParameterCells::single(std::int32_t row, std::int32_t column) {
    return toSingle(Value(row, column), state_.locale());
}

String ParameterCells::text(std::int32_t row, std::int32_t column) {
    return toText(Value(row, column), state_.locale());
}

void ParameterCells::normaliseRange() {
    if (!is(0, 0, false))
        return;
    const bool noLower = is(0, 1, 0.0);
    const bool noUpper = is(0, 2, 0.0);
    if (noLower && noUpper)
        Value(0, 0, true);
    else if (noLower)
        Value(0, 1, Value(0, 2));
    else
        Value(0, 2, Value(0, 1));
}

} // namespace kvtdruck
