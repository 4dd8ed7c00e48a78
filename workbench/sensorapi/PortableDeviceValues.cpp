#include "workbench/sensorapi/PortableDeviceValues.h"

#include <algorithm>
#include <utility>

namespace bench {
namespace {

auto FindKey(auto& values, const PROPERTYKEY& key) {
  return std::find_if(values.begin(), values.end(),
                      [&](const KeyValue& each) { return SameKey(each.key, key); });
}

}  // namespace

PortableDeviceValues::PortableDeviceValues(const World& world, KeyValues values)
    : ApiObject(world, "PortableDeviceValues", "IPortableDeviceValues"),
      values_(std::move(values)) {}

// Objects that a leaked set still holds may be gone already: the ledger's objects end in any order.
PortableDeviceValues::~PortableDeviceValues() {
  for (KeyValue& each : values_) {
    if (each.value.Type() == VT_UNKNOWN) static_cast<void>(each.value.Detach());
  }
}

void PortableDeviceValues::OnDestroyed() {
  TakeAll();
}

KeyValues PortableDeviceValues::TakeAll() {
  const std::lock_guard lock(mutex_);
  return std::exchange(values_, {});
}

KeyValues PortableDeviceValues::Content() const {
  const std::lock_guard lock(mutex_);
  return values_;
}

void PortableDeviceValues::Store(REFPROPERTYKEY key, Variant value) {
  const std::lock_guard lock(mutex_);
  if (const auto found = FindKey(values_, key); found != values_.end()) {
    found->value = std::move(value);
  } else {
    values_.push_back({key, std::move(value)});
  }
}

HRESULT PortableDeviceValues::Load(REFPROPERTYKEY key, Variant* value) const {
  const std::lock_guard lock(mutex_);
  const auto found = FindKey(values_, key);
  if (found == values_.end()) return kNotFound;
  *value = found->value;
  return S_OK;
}

HRESULT PortableDeviceValues::LoadTyped(REFPROPERTYKEY key, VARTYPE type, Variant* value) const {
  const HRESULT result = Load(key, value);
  if (FAILED(result)) return result;
  return value->Type() == type ? S_OK : DISP_E_TYPEMISMATCH;
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetCount(DWORD* count) {
  return Call("GetCount", [&] {
    if (count == nullptr) return E_POINTER;
    const std::lock_guard lock(mutex_);
    *count = static_cast<DWORD>(values_.size());
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetAt(DWORD index, PROPERTYKEY* key,
                                                      PROPVARIANT* value) {
  return Call("GetAt", [&] {
    const std::lock_guard lock(mutex_);
    if (index >= values_.size()) return E_INVALIDARG;
    if (value != nullptr) {
      const HRESULT result = CopyVariant(values_[index].value.Get(), value);
      if (FAILED(result)) return result;
    }
    if (key != nullptr) *key = values_[index].key;
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::SetValue(REFPROPERTYKEY key,
                                                         const PROPVARIANT* value) {
  return Call("SetValue", [&] {
    if (value == nullptr) return E_POINTER;
    Variant copy;
    const HRESULT result = CopyVariant(*value, copy.Put());
    if (SUCCEEDED(result)) Store(key, std::move(copy));
    return result;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::GetValue(REFPROPERTYKEY key, PROPVARIANT* value) {
  return Call("GetValue", [&] {
    if (value == nullptr) return E_POINTER;
    PropVariantInit(value);
    const std::lock_guard lock(mutex_);
    const auto found = FindKey(values_, key);
    return found == values_.end() ? kNotFound : CopyVariant(found->value.Get(), value);
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::RemoveValue(REFPROPERTYKEY key) {
  return Call("RemoveValue", [&] {
    const std::lock_guard lock(mutex_);
    const auto found = FindKey(values_, key);
    if (found == values_.end()) return kNotFound;
    values_.erase(found);
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::CopyValuesFromPropertyStore(IPropertyStore* store) {
  return Call("CopyValuesFromPropertyStore", [&] {
    if (store == nullptr) return E_POINTER;
    DWORD count = 0;
    HRESULT result = store->GetCount(&count);
    for (DWORD index = 0; SUCCEEDED(result) && index < count; ++index) {
      PROPERTYKEY key{};
      Variant value;
      result = store->GetAt(index, &key);
      if (SUCCEEDED(result)) result = store->GetValue(key, value.Put());
      if (SUCCEEDED(result)) Store(key, std::move(value));
    }
    return result;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::CopyValuesToPropertyStore(IPropertyStore* store) {
  return Call("CopyValuesToPropertyStore", [&] {
    if (store == nullptr) return E_POINTER;
    HRESULT result = S_OK;
    for (const auto& [key, value] : Content()) {
      result = store->SetValue(key, value.Get());
      if (FAILED(result)) return result;
    }
    return result;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValues::Clear() {
  return Call("Clear", [&] {
    TakeAll();
    return S_OK;
  });
}

HRESULT ReadValues(const World& world, IPortableDeviceValues& values, KeyValues* content) {
  if (const auto* own = OwnObject<PortableDeviceValues>(world, &values)) {
    *content = own->Content();
    return S_OK;
  }
  content->clear();
  DWORD count = 0;
  HRESULT result = values.GetCount(&count);
  for (DWORD index = 0; SUCCEEDED(result) && index < count; ++index) {
    KeyValue next{};
    result = values.GetAt(index, &next.key, next.value.Put());
    if (SUCCEEDED(result)) content->push_back(std::move(next));
  }
  return result;
}

const Variant* FindValue(const KeyValues& values, const PROPERTYKEY& key) {
  const auto found = FindKey(values, key);
  return found == values.end() ? nullptr : &found->value;
}

}  // namespace bench
