// Objects of C libraries, owned.
#pragma once

namespace kvtdruck::druckwerk {

/// Lets std::unique_ptr give an object back with the function that its library has for that.
template <auto Release>
struct Deleter {
    template <class T>
    void operator()(T* object) const {
        (*Release)(object);
    }
};

} // namespace kvtdruck::druckwerk
