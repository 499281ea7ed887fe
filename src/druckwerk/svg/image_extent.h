// Pictures, as far as a look at their heads tells.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kvtdruck::druckwerk {

/// Width and height in pixels from the head of a PNG or JPEG file, before any decoder sees it; nothing where it is
/// neither.
std::optional<std::pair<std::uint32_t, std::uint32_t>> imageExtent(std::string_view head);

/// The content of a "data:" address in base64; nothing where it is another one, or damaged.
std::optional<std::string> dataOf(std::string_view address);

/// The address that holds the content of a PNG or JPEG file.
std::string dataAddress(std::string_view content);

} // namespace kvtdruck::druckwerk
