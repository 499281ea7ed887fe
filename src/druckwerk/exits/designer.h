// The designer: layouts are drawn in Inkscape, with the report's variables and fields beside the page to copy.
#pragma once

#include "druckwerk/common/finding.h"
#include "druckwerk/common/options.h"
#include "druckwerk/exits/palette.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

namespace kvtdruck::druckwerk {

/// Takes one finding about a layout.
using FindingSink = std::function<void(const Finding&)>;

/// What goes on around a designer while it is open.
struct Designing {
    FindingSink find;
    FieldNotes notes;
    /// Takes the layout as it is shown first, and then each time that it is saved. Where this is empty, the layout
    /// is checked when the designer has been closed.
    std::function<void(const std::string& layout)> saved;
    /// Set from anywhere (a signal handler) to end the designer; what was saved until then is kept.
    const std::atomic<bool>* cancelled = nullptr;
};

/// Opens the layout and waits until the designer is closed. A layout that is not there yet starts as the one that
/// stands behind it or the generated one, and only comes about when it was saved. Answers 0, or an engine code with
/// its German message.
std::int32_t design(const DesignRequest& request, const Designing& designing, std::string& message);

} // namespace kvtdruck::druckwerk
