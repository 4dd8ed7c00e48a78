// Lists of property keys and of value sets.
#pragma once

#include <mutex>
#include <vector>

#include "platform/PortableDevices.h"
#include "workbench/sensorapi/ApiObject.h"
#include "workbench/sensorapi/PortableDeviceValues.h"

namespace bench {

/// May be called from any thread; an index beyond the end gives E_INVALIDARG.
class PortableDeviceKeyCollection final : public ApiObject<IPortableDeviceKeyCollection> {
 public:
  explicit PortableDeviceKeyCollection(const World& world, std::vector<PROPERTYKEY> keys = {});

  /// A copy of the keys; not a call of the interface.
  std::vector<PROPERTYKEY> Content() const;

  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override;
  HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) override;
  HRESULT STDMETHODCALLTYPE Add(REFPROPERTYKEY key) override;
  HRESULT STDMETHODCALLTYPE Clear() override;
  HRESULT STDMETHODCALLTYPE RemoveAt(DWORD index) override;

 private:
  void OnDestroyed() override;

  mutable std::mutex mutex_;
  std::vector<PROPERTYKEY> keys_;
};

/// Holds a reference to each value set that is added, and hands out the same object.
class PortableDeviceValuesCollection final : public ApiObject<IPortableDeviceValuesCollection> {
 public:
  explicit PortableDeviceValuesCollection(const World& world);
  ~PortableDeviceValuesCollection() override;

  /// The value sets; not a call of the interface.
  std::vector<ComPtr<IPortableDeviceValues>> Content() const;

  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override;
  HRESULT STDMETHODCALLTYPE GetAt(DWORD index, IPortableDeviceValues** values) override;
  HRESULT STDMETHODCALLTYPE Add(IPortableDeviceValues* values) override;
  HRESULT STDMETHODCALLTYPE Clear() override;
  HRESULT STDMETHODCALLTYPE RemoveAt(DWORD index) override;

 private:
  void OnDestroyed() override;

  /// Empties the list. The sets are released by the caller, outside the lock.
  std::vector<ComPtr<IPortableDeviceValues>> TakeAll();

  mutable std::mutex mutex_;
  std::vector<ComPtr<IPortableDeviceValues>> sets_;
};

/// As ReadValues.
HRESULT ReadKeys(const World& world, IPortableDeviceKeyCollection& keys,
                 std::vector<PROPERTYKEY>* content);
HRESULT ReadValueSets(const World& world, IPortableDeviceValuesCollection& sets,
                      std::vector<KeyValues>* content);

}  // namespace bench
