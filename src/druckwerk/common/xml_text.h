// Text of XML files that the engine writes.
#pragma once

#include "values/text.h"

#include <string>

namespace kvtdruck::druckwerk {

/// `text` as content of an element, in UTF-8 (https://www.w3.org/TR/xml/#charsets): U+FFFD stands for what XML
/// can't hold, and a carriage return keeps from being taken for a line end.
std::string xmlText(StringView text);

} // namespace kvtdruck::druckwerk
