// Words of a layout that are broken at the end of a line: their parts are texts of their own.
#pragma once

#include "druckwerk/layout/layout.h"

#include <vector>

namespace kvtdruck::druckwerk {

/// Marks the texts, the same in every document, of which the upper one ends with a hyphen and the lower one, right
/// beneath it, goes on: „Umsatz-“ and „erlöse“. „Soll-“ above „und Istkosten“ are two words.
void joinBrokenWords(std::vector<Item>& items);

} // namespace kvtdruck::druckwerk
