// When a document is printed.
#pragma once

#include <optional>

namespace kvtdruck::druckwerk {

/// The user's time at which a document is printed; the same input with the same date gives the same bytes.
struct PrintDate {
    int year = 2000;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    std::optional<int> utcOffset =
        std::nullopt; ///< minutes that the user's clock is ahead of UTC, where it is known
};

} // namespace kvtdruck::druckwerk
