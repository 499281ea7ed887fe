// What can be said about a layout.
#pragma once

#include <cstdint>
#include <string>

namespace kvtdruck::druckwerk {

/// One thing to say about a layout.
struct Finding {
    bool error = false; ///< prevents printing; otherwise a warning
    std::int32_t code = 0;
    std::string message; ///< German, with file, line, layer and element where they are known
    bool note = false;   ///< told because it was asked for; nothing is wrong
};

} // namespace kvtdruck::druckwerk
