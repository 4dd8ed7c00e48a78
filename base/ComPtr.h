// A counted pointer to a COM-style object: anything with AddRef and Release.
#pragma once

#include <windows.h>

#include <utility>

#include "platform/Iid.h"

namespace stelvane {

template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  /// Adds a reference of its own.
  explicit ComPtr(T* object) : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.object_) {}
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ~ComPtr() { Reset(); }

  ComPtr& operator=(const ComPtr& other) {
    ComPtr copy(other);
    std::swap(object_, copy.object_);
    return *this;
  }
  ComPtr& operator=(ComPtr&& other) noexcept {
    ComPtr moved(std::move(other));
    std::swap(object_, moved.object_);
    return *this;
  }

  /// Releases the reference, if any, and becomes null. Null is set first: a release may run code
  /// that looks at this pointer.
  void Reset() {
    if (T* const old = std::exchange(object_, nullptr); old != nullptr) old->Release();
  }
  /// Gives the reference to the caller.
  [[nodiscard]] T* Detach() { return std::exchange(object_, nullptr); }

  T* Get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  /// For calls that hand out a counted pointer: drops the old one and gives the place for the new.
  T** Put() {
    Reset();
    return &object_;
  }

  /// QueryInterface for another interface of the same object.
  template <class Other>
  HRESULT As(ComPtr<Other>& other) const {
    return object_->QueryInterface(iidOf<Other>, reinterpret_cast<void**>(other.Put()));
  }

 private:
  T* object_ = nullptr;
};

}  // namespace stelvane
