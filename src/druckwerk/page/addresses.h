// Web and mail addresses within a text.
#pragma once

#include "values/text.h"

#include <cstddef>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// The address that stands at `begin` to `end` of a text.
struct Address {
    std::size_t begin;
    std::size_t end;
    std::string uri;
};

/// The addresses in `text`, from its beginning. What is not ASCII ends an address: readers would need it encoded,
/// and a link that leads elsewhere is worse than none.
std::vector<Address> addressesIn(StringView text);

} // namespace kvtdruck::druckwerk
