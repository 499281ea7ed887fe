// What a selection means for the component, which takes of many ranges one value or all: the prints that cover the
// selection, one for each value that exists.
#pragma once

#include "catalog/report_catalog.h"

#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace kvtdruck::cli {

/// One request to the component.
struct SinglePrint {
    catalog::Selections selections;    ///< as the parameter array takes them
    std::vector<std::string> bookmark; ///< what tells it from the others, such as "2024", "Konto 4100"
};

/// What one record of the data stands for: a value, or a range of them.
struct Extent {
    std::int32_t first;
    std::int32_t last;
};

/// The extents that exist on an axis, in ascending order, within what has been chosen on the axes before it.
using ExistingValues =
    std::function<std::vector<Extent>(const catalog::Axis& axis, const catalog::Selections& chosen)>;

/// Nothing of what was selected exists; the text is German and says what does.
class NothingSelected : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The prints that `ranges` of `axes` (see `rangesOf`) stand for, in the order in which they are printed; at least
/// one. `existing` is asked only for the axes that the user has bounded, and those of which the component needs one
/// value. Where nothing exists at all, the one print is as the user asked, and the component says what is missing.
/// Throws `NothingSelected`, or a `UsageError`.
std::vector<SinglePrint> planPrints(std::span<const catalog::Axis> axes, const catalog::Selections& ranges,
                                    const ExistingValues& existing);

} // namespace kvtdruck::cli
