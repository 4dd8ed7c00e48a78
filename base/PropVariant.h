// Owner of a PROPVARIANT.
#pragma once

#include <windows.h>

#include <propidl.h>

namespace stelvane {

/// Cleared at the end of the scope, which frees the text or bytes that it holds.
class PropVariant {
 public:
  PropVariant() { PropVariantInit(&value_); }
  PropVariant(const PropVariant&) = delete;
  PropVariant& operator=(const PropVariant&) = delete;
  ~PropVariant() { PropVariantClear(&value_); }

  const PROPVARIANT& Get() const { return value_; }
  PROPVARIANT& Value() { return value_; }
  /// For calls that fill the variant: empties it first.
  PROPVARIANT* Put() {
    PropVariantClear(&value_);
    return &value_;
  }

 private:
  PROPVARIANT value_;
};

}  // namespace stelvane
