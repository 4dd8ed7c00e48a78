#include "workbench/sensorapi/PortableDeviceCollections.h"

#include <iterator>
#include <utility>

namespace bench {
namespace {

template <class Item>
HRESULT RemoveIndex(std::vector<Item>* items, DWORD index) {
  if (index >= items->size()) return E_INVALIDARG;
  items->erase(std::next(items->begin(), static_cast<std::ptrdiff_t>(index)));
  return S_OK;
}

}  // namespace

PortableDeviceKeyCollection::PortableDeviceKeyCollection(const World& world,
                                                         std::vector<PROPERTYKEY> keys)
    : ApiObject(world, "PortableDeviceKeyCollection", "IPortableDeviceKeyCollection"),
      keys_(std::move(keys)) {}

void PortableDeviceKeyCollection::OnDestroyed() {
  const std::lock_guard lock(mutex_);
  keys_.clear();
}

std::vector<PROPERTYKEY> PortableDeviceKeyCollection::Content() const {
  const std::lock_guard lock(mutex_);
  return keys_;
}

HRESULT STDMETHODCALLTYPE PortableDeviceKeyCollection::GetCount(DWORD* count) {
  return Call("GetCount", [&] {
    if (count == nullptr) return E_POINTER;
    const std::lock_guard lock(mutex_);
    *count = static_cast<DWORD>(keys_.size());
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceKeyCollection::GetAt(DWORD index, PROPERTYKEY* key) {
  return Call("GetAt", [&] {
    if (key == nullptr) return E_POINTER;
    const std::lock_guard lock(mutex_);
    if (index >= keys_.size()) return E_INVALIDARG;
    *key = keys_[index];
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceKeyCollection::Add(REFPROPERTYKEY key) {
  return Call("Add", [&] {
    const std::lock_guard lock(mutex_);
    keys_.push_back(key);
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceKeyCollection::Clear() {
  return Call("Clear", [&] {
    const std::lock_guard lock(mutex_);
    keys_.clear();
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceKeyCollection::RemoveAt(DWORD index) {
  return Call("RemoveAt", [&] {
    const std::lock_guard lock(mutex_);
    return RemoveIndex(&keys_, index);
  });
}

PortableDeviceValuesCollection::PortableDeviceValuesCollection(const World& world)
    : ApiObject(world, "PortableDeviceValuesCollection", "IPortableDeviceValuesCollection") {}

// What a leaked list still holds may be gone already: the ledger's objects end in any order.
PortableDeviceValuesCollection::~PortableDeviceValuesCollection() {
  for (ComPtr<IPortableDeviceValues>& set : sets_) static_cast<void>(set.Detach());
}

void PortableDeviceValuesCollection::OnDestroyed() {
  TakeAll();
}

std::vector<ComPtr<IPortableDeviceValues>> PortableDeviceValuesCollection::TakeAll() {
  const std::lock_guard lock(mutex_);
  return std::exchange(sets_, {});
}

std::vector<ComPtr<IPortableDeviceValues>> PortableDeviceValuesCollection::Content() const {
  const std::lock_guard lock(mutex_);
  return sets_;
}

HRESULT STDMETHODCALLTYPE PortableDeviceValuesCollection::GetCount(DWORD* count) {
  return Call("GetCount", [&] {
    if (count == nullptr) return E_POINTER;
    const std::lock_guard lock(mutex_);
    *count = static_cast<DWORD>(sets_.size());
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValuesCollection::GetAt(DWORD index,
                                                                IPortableDeviceValues** values) {
  return Call("GetAt", [&] {
    if (values == nullptr) return E_POINTER;
    *values = nullptr;
    const std::lock_guard lock(mutex_);
    if (index >= sets_.size()) return E_INVALIDARG;
    *values = ComPtr<IPortableDeviceValues>(sets_[index]).Detach();
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValuesCollection::Add(IPortableDeviceValues* values) {
  return Call("Add", [&] {
    if (values == nullptr) return E_POINTER;
    const std::lock_guard lock(mutex_);
    sets_.push_back(ComPtr<IPortableDeviceValues>(values));
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValuesCollection::Clear() {
  return Call("Clear", [&] {
    TakeAll();
    return S_OK;
  });
}

HRESULT STDMETHODCALLTYPE PortableDeviceValuesCollection::RemoveAt(DWORD index) {
  return Call("RemoveAt", [&] {
    ComPtr<IPortableDeviceValues> removed;  // released after the lock
    const std::lock_guard lock(mutex_);
    if (index < sets_.size()) removed = sets_[index];
    return RemoveIndex(&sets_, index);
  });
}

HRESULT ReadKeys(const World& world, IPortableDeviceKeyCollection& keys,
                 std::vector<PROPERTYKEY>* content) {
  if (const auto* own = OwnObject<PortableDeviceKeyCollection>(world, &keys)) {
    *content = own->Content();
    return S_OK;
  }
  content->clear();
  DWORD count = 0;
  HRESULT result = keys.GetCount(&count);
  for (DWORD index = 0; SUCCEEDED(result) && index < count; ++index) {
    PROPERTYKEY key{};
    result = keys.GetAt(index, &key);
    if (SUCCEEDED(result)) content->push_back(key);
  }
  return result;
}

HRESULT ReadValueSets(const World& world, IPortableDeviceValuesCollection& sets,
                      std::vector<KeyValues>* content) {
  content->clear();
  std::vector<ComPtr<IPortableDeviceValues>> found;
  HRESULT result = S_OK;
  if (const auto* own = OwnObject<PortableDeviceValuesCollection>(world, &sets)) {
    found = own->Content();
  } else {
    DWORD count = 0;
    result = sets.GetCount(&count);
    for (DWORD index = 0; SUCCEEDED(result) && index < count; ++index) {
      result = sets.GetAt(index, found.emplace_back().Put());
    }
  }
  for (auto set = found.begin(); SUCCEEDED(result) && set != found.end(); ++set) {
    result = ReadValues(world, *set->Get(), &content->emplace_back());
  }
  return result;
}

}  // namespace bench
