// The host's error-report object `clsFehler`: keeps what it is told in a file.
#pragma once

#include <oaidl.h>

namespace kvtdruck::test {

/// A new object with one reference. Each report is one line of the file that the environment's KVT_TEST_ERRORS
/// names: class|procedure|number|text|runtime, line breaks within the text as \r and \n; "created" is a line by
/// itself. A report whose first four arguments do not come by reference, or whose last does, is refused.
IDispatch* createErrorReport();

} // namespace kvtdruck::test
