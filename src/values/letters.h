// Letters without their case, and how much two names differ.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kvtdruck {

/// `text` with the letters A to Z as small ones, other letters as they are.
std::string asciiLower(std::string_view text);

/// Edits (letters inserted, left out or changed) that lead from one text to the other; the case of A to Z counts
/// for nothing.
std::size_t editDistance(std::string_view a, std::string_view b);

} // namespace kvtdruck
