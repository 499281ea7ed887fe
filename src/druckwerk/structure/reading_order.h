// The order in which blocks of a page are read.
#pragma once

#include "druckwerk/structure/blocks.h"

namespace kvtdruck::druckwerk {

/// Puts the blocks into the order in which one reads them: from above where they can be told apart by level lines,
/// beside each other from the left. A heading stays with what is beneath it.
void putInReadingOrder(std::vector<Block>& blocks);

} // namespace kvtdruck::druckwerk
