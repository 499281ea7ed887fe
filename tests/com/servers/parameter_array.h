// The host's parameter array, `XArrayDBObject.XArrayDB`.
#pragma once

#include "values/object.h"

namespace kvtdruck::test {

/// A new array without cells. Members: `ReDim` (lower and upper bound of the rows, then of the columns), `Value`
/// (row, column; read and written), `Count` (dimension).
ObjectRef createParameterArray();

} // namespace kvtdruck::test
