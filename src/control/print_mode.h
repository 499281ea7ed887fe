// How the engine prints a job.
#pragma once

#include <cstdint>

namespace kvtdruck {

inline constexpr std::int32_t kPrintModeNormal = 256;  ///< on a printer, or into a file
inline constexpr std::int32_t kPrintModePreview = 512; ///< into a preview file

} // namespace kvtdruck
