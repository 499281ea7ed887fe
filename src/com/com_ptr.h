// A reference to a COM object, counted.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <utility>

namespace kvtdruck::com {

template <class T>
class ComPtr {
  public:
    ComPtr() = default;
    /// Shares `object`.
    explicit ComPtr(T* object) : object_(object) {
        if (object_)
            object_->AddRef();
    }
    ComPtr(const ComPtr& other) : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPtr() {
        if (object_)
            object_->Release();
    }

    /// Where a function puts a new reference.
    T** put() {
        *this = {};
        return &object_;
    }
    T* get() const { return object_; }
    T* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// Gives the reference away.
    T* detach() { return std::exchange(object_, nullptr); }

    /// The object's interface `Other`; empty where it has none.
    template <class Other>
    ComPtr<Other> as() const {
        void* other = nullptr;
        ComPtr<Other> owner;
        if (object_ && SUCCEEDED(object_->QueryInterface(__uuidof(Other), &other)))
            owner.object_ = static_cast<Other*>(other);
        return owner;
    }

  private:
    template <class>
    friend class ComPtr;

    T* object_ = nullptr;
};

} // namespace kvtdruck::com
