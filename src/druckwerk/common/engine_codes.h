// What the engine answers where it does not answer success, page full or cancelled.
#pragma once

#include <cstdint>
#include <string>

namespace kvtdruck::druckwerk {

/// Result codes of this engine, beside success, page full and cancelled (docs/engine-errors.md).
enum EngineCode : std::int32_t {
    kWrongOrder = -1,        ///< an operation without an open print job, or a second job in an open one
    kWrongArguments = -2,    ///< number or types of the arguments
    kLayoutUnreadable = -20, ///< the layout file is there but can't be read
    kLayoutMalformed = -21,  ///< the layout is no well-formed SVG
    kLayoutInvalid = -22,    ///< a band, field, pattern or expression of the layout is wrong
    kLayoutRefused = -23,    ///< the layout asks for something that is never done (external files, too large, …)
    kOutputFailed = -30,     ///< the document can't be written
    kPrintingFailed = -31,   ///< the printer or its queue refuses the document
    kNoFont = -32,           ///< not a single usable font is installed
    kDesignFailed = -40,     ///< the designer can't be opened
    kNotOffered = -50,       ///< this engine has no such operation
};

/// What went wrong, for the user.
struct EngineError {
    std::int32_t code = 0;
    std::string message; ///< German, UTF-8; with file, line and reason where they are known
    bool operator==(const EngineError&) const = default;
};

} // namespace kvtdruck::druckwerk
