// What a report defines, as the rooms tell one another and the user.
#pragma once

#include <string>

namespace kvtdruck::druckwerk {

/// One variable or field as the report defined it.
struct Definition {
    std::string name;
    std::string value;
    bool numeric = false;
    bool field = false;
};

} // namespace kvtdruck::druckwerk
