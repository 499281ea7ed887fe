// Text of the component: UTF-16 from end to end, because every text is a COM string on one side of it.
#pragma once

#include <string>
#include <string_view>

namespace kvtdruck {

using String = std::u16string;
using StringView = std::u16string_view;

/// UTF-8 of `text`. An unpaired surrogate becomes its three-byte form, so nothing is lost on the way out and back.
std::string toUtf8(StringView text);

/// UTF-16 of `text`. The three-byte form of a surrogate is taken back; any other malformed byte becomes U+FFFD.
String fromUtf8(std::string_view text);

/// Appends `fromUtf8(utf8)` to `text`.
void appendFromUtf8(String& text, std::string_view utf8);

/// `text` without leading and trailing blanks (U+0020 only, as `Trim` does it).
StringView trimmed(StringView text);

/// `text` with every occurrence of `what` removed.
String without(StringView text, StringView what);

/// The decimal digits of `number`, with a minus sign where it is negative.
String decimal(long long number);

} // namespace kvtdruck
