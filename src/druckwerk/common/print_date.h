// When a document is printed.
#pragma once

namespace kvtdruck::druckwerk {

/// The user's time at which a document is printed; the same input with the same date gives the same bytes.
struct PrintDate {
    int year = 2000;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

} // namespace kvtdruck::druckwerk
