// Which demands a PDF file meets.
#pragma once

#include <cstdint>

namespace kvtdruck::druckwerk {

enum class PdfLevel : std::uint8_t {
    Plain,      ///< any reader's
    Archive,    ///< PDF/A-3u (ISO 19005-3): to be read, and drawn alike, for decades
    Accessible, ///< PDF/A-3a and PDF/UA-1 (ISO 14289-1): its structure tells those who hear it what is where
};

} // namespace kvtdruck::druckwerk
