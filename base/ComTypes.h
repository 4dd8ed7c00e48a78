// Owners of COM's own value types.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

#include "base/Result.h"

namespace stelvane {

/// A BSTR, freed at the end of the scope.
class Bstr {
 public:
  Bstr() = default;
  /// Null when there is no memory.
  explicit Bstr(const WCHAR* text) : text_(SysAllocString(text)) {}
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(text_); }

  BSTR Get() const { return text_; }
  BSTR* Put() {
    SysFreeString(text_);
    text_ = nullptr;
    return &text_;
  }
  /// The text in the thread's code page; a null text is empty. May throw std::bad_alloc.
  std::string Narrow() const {
    const int wide = static_cast<int>(SysStringLen(text_));
    if (wide == 0) return {};
    const int length =
        WideCharToMultiByte(CP_THREAD_ACP, 0, text_, wide, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_THREAD_ACP, 0, text_, wide, narrow.data(), length, nullptr, nullptr);
    return narrow;
  }

 private:
  BSTR text_ = nullptr;
};

/// A VARIANT that holds a text, cleared at the end of the scope.
class TextVariant {
 public:
  /// VT_BSTR with a null text when there is no memory.
  explicit TextVariant(const WCHAR* text) {
    VariantInit(&value_);
    value_.vt = VT_BSTR;
    value_.bstrVal = SysAllocString(text);
  }
  TextVariant(const TextVariant&) = delete;
  TextVariant& operator=(const TextVariant&) = delete;
  ~TextVariant() { VariantClear(&value_); }

  bool HasText() const { return value_.bstrVal != nullptr; }
  const VARIANT& Get() const { return value_; }

 private:
  VARIANT value_ = {};
};

}  // namespace stelvane
