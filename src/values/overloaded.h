// One function for each kind of value that a variant can hold.
#pragma once

namespace kvtdruck {

/// Several functions as one, for std::visit.
template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

} // namespace kvtdruck
