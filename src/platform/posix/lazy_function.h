// Functions of libraries that few runs of the program need: loaded when they are called for the first time, since
// loading all libraries would take longer than printing a page.
#pragma once

namespace kvtdruck {

/// The address of `name` in the system's library of that file name, or in a library that it needs. Raises
/// std::runtime_error with a German message where the library or the function is missing.
void* addressOf(const char* library, const char* name);

/// A function of a C library, to be called under its own name.
template <class Function>
class LazyFunction;

template <class Result, class... Arguments>
class LazyFunction<Result(Arguments...)> {
  public:
    constexpr LazyFunction(const char* library, const char* name) : library_(library), name_(name) {}

    Result operator()(Arguments... arguments) const {
        if (address_ == nullptr)
            address_ = addressOf(library_, name_);
        return reinterpret_cast<Result (*)(Arguments...)>(address_)(arguments...);
    }

  private:
    const char* library_;
    const char* name_;
    mutable void* address_ = nullptr;
};

} // namespace kvtdruck
