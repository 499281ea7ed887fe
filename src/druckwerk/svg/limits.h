// What a layout may ask for, each bound with the attack that it answers. Layouts come from anybody; a print ends in
// any case, and touches nothing but the layout's own folder.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kvtdruck::druckwerk::limits {

/// Megabytes of text that are read before anything is known about them.
inline constexpr std::uintmax_t kFileSize = 20'000'000;
/// Elements within elements, and uses of uses, until the stack of whoever walks them is full.
inline constexpr int kDepth = 64;
/// Elements as such: each costs time in every later step.
inline constexpr int kElements = 20'000;
/// Elements that `use`, markers and patterns make of few: "a" is ten times "b", which is ten times "c", …
inline constexpr std::uint64_t kCopies = 30'000;
/// Attributes of one element, which are looked up one after the other.
inline constexpr int kAttributes = 250;
/// Letters of a text with placeholders, all of which are gone through for every record.
inline constexpr std::size_t kTextWithPlaceholders = 10'000;
/// Pixels along a picture's edge: a few bytes can claim to be gigapixels.
inline constexpr std::uint32_t kPixels = 8192;
/// Seconds of computing time, seconds of waiting and bytes of memory of the SVG library, whatever it is given.
inline constexpr unsigned kArtworkComputing = 10;
inline constexpr unsigned kArtworkWaiting = 30;
inline constexpr std::uint64_t kArtworkMemory = std::uint64_t{2} << 30;

} // namespace kvtdruck::druckwerk::limits
