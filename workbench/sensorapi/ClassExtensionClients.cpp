// The class extension's way down: clients' requests become the driver's callbacks.
#include <utility>

#include "platform/WdfRequest.h"
#include "workbench/framework/DriverCall.h"
#include "workbench/sensorapi/ClassExtension.h"
#include "workbench/sensorapi/PortableDeviceCollections.h"

namespace bench {
namespace {

std::string_view MemoryBytes(IWDFMemory* memory) {
  if (memory == nullptr) return {};
  SIZE_T size = 0;
  const void* const bytes = memory->GetDataBuffer(&size);
  return {static_cast<const char*>(bytes), size};
}

/// Writes the answer into the request's output; gives what to complete the request with.
HRESULT PutAnswer(IWDFIoRequest& request, const SensorAnswer& answer, SIZE_T* written) {
  const std::string bytes = Encode(answer);
  ComPtr<IWDFMemory> output;
  request.GetOutputMemory(output.Put());
  if (!output || output->GetSize() < bytes.size()) return kInsufficientBuffer;
  // The framework's signature takes a pointer to non-const, and does not write through it.
  const HRESULT result = output->CopyFromBuffer(0, const_cast<char*>(bytes.data()), bytes.size());
  if (SUCCEEDED(result)) *written = bytes.size();
  return result;
}

}  // namespace

HRESULT STDMETHODCALLTYPE ClassExtension::ProcessIoControl(IWDFIoRequest* request) {
  return Call("ProcessIoControl", [&] {
    if (request == nullptr) return E_POINTER;
    ULONG code = 0;
    request->GetDeviceIoControlParameters(&code, nullptr, nullptr);
    SIZE_T written = 0;
    HRESULT result = Ready("ProcessIoControl");
    if (SUCCEEDED(result) && code != kMessageRead && code != kMessageReadWrite) {
      result = kNotSupported;
    }
    if (SUCCEEDED(result)) {
      ComPtr<IWDFMemory> input;
      request->GetInputMemory(input.Put());
      ComPtr<IWDFFile> file;
      request->GetFileObject(file.Put());
      const auto message = DecodeRequest(MemoryBytes(input.Get()));
      result = message && file ? PutAnswer(*request, Serve(file.Get(), *message), &written)
                               : E_INVALIDARG;
    }
    request->CompleteWithInformation(result, written);
    return result;
  });
}

HRESULT STDMETHODCALLTYPE ClassExtension::CleanupFile(IWDFFile* file) {
  return Call("CleanupFile", [&] {
    const HRESULT ready = Ready("CleanupFile");
    if (FAILED(ready)) return ready;
    return file == nullptr ? E_POINTER : Disconnect(file);
  });
}

HRESULT ClassExtension::Disconnect(IWDFFile* file) {
  Driver driver;
  if (!Running(&driver)) return kInvalidState;
  Client client;
  {
    const std::lock_guard lock(mutex_);
    const auto found = clients_.find(file);
    if (found == clients_.end()) return S_OK;
    client = found->second;
    clients_.erase(found);
  }
  if (client.subscribed) {
    CallDriver(world(), "ISensorDriver::OnClientUnsubscribeFromEvents", [&] {
      return driver.callbacks->OnClientUnsubscribeFromEvents(file, driver.sensorId.data());
    });
  }
  return CallDriver(world(), "ISensorDriver::OnClientDisconnect", [&] {
    return driver.callbacks->OnClientDisconnect(file, driver.sensorId.data());
  });
}

bool ClassExtension::Running(Driver* driver) const {
  const std::lock_guard lock(mutex_);
  *driver = driver_;
  return state_ == State::kInitialized;
}

SensorAnswer ClassExtension::Serve(IWDFFile* file, const SensorRequest& request) {
  Driver driver;
  if (!Running(&driver)) return {.result = kInvalidState};
  const SensorOperation operation = request.operation;
  if (operation != SensorOperation::kConnect && !IsClient(file)) return {.result = kInvalidState};
  switch (operation) {
    case SensorOperation::kConnect:
      return {.result = Connect(driver, file)};
    case SensorOperation::kSubscribe:
      return {.result = Subscribe(driver, file)};
    case SensorOperation::kUnsubscribe:
      return {.result = Unsubscribe(driver, file)};
    case SensorOperation::kGetProperties:
    case SensorOperation::kSetProperties:
    case SensorOperation::kGetDataFields:
      return ServeValues(driver, file, request);
    case SensorOperation::kGetSupportedProperties:
    case SensorOperation::kGetSupportedDataFields:
      return ServeKeys(driver, operation);
    case SensorOperation::kGetSupportedEvents:
      return ServeEvents(driver);
  }
  return {.result = kNotSupported};
}

bool ClassExtension::IsClient(IWDFFile* file) const {
  const std::lock_guard lock(mutex_);
  return clients_.contains(file);
}

void ClassExtension::SetSubscribed(IWDFFile* file, bool subscribed) {
  const std::lock_guard lock(mutex_);
  // A file that was cleaned up meanwhile is a client no longer.
  if (const auto found = clients_.find(file); found != clients_.end()) {
    found->second.subscribed = subscribed;
  }
}

// A client counts before the driver is told: the driver may post to it from inside the callback.

HRESULT ClassExtension::Connect(Driver& driver, IWDFFile* file) {
  {
    const std::lock_guard lock(mutex_);
    clients_.try_emplace(file);
  }
  const HRESULT result = CallDriver(world(), "ISensorDriver::OnClientConnect", [&] {
    return driver.callbacks->OnClientConnect(file, driver.sensorId.data());
  });
  if (FAILED(result)) {
    const std::lock_guard lock(mutex_);
    clients_.erase(file);
  }
  return result;
}

HRESULT ClassExtension::Subscribe(Driver& driver, IWDFFile* file) {
  SetSubscribed(file, true);
  const HRESULT result = CallDriver(world(), "ISensorDriver::OnClientSubscribeToEvents", [&] {
    return driver.callbacks->OnClientSubscribeToEvents(file, driver.sensorId.data());
  });
  if (FAILED(result)) SetSubscribed(file, false);
  return result;
}

HRESULT ClassExtension::Unsubscribe(Driver& driver, IWDFFile* file) {
  const HRESULT result = CallDriver(world(), "ISensorDriver::OnClientUnsubscribeFromEvents", [&] {
    return driver.callbacks->OnClientUnsubscribeFromEvents(file, driver.sensorId.data());
  });
  SetSubscribed(file, false);
  return result;
}

SensorAnswer ClassExtension::ServeValues(Driver& driver, IWDFFile* file,
                                         const SensorRequest& request) {
  LPWSTR const id = driver.sensorId.data();
  const auto keys = MakeApiObject<PortableDeviceKeyCollection>(world(), request.keys);
  const auto values = MakeApiObject<PortableDeviceValues>(world(), request.values);
  ComPtr<IPortableDeviceValues> given;
  std::string callback = "ISensorDriver::";
  SensorAnswer answer;
  switch (request.operation) {
    case SensorOperation::kGetProperties:
      callback += "OnGetProperties";
      answer.result = CallDriver(world(), callback, [&] {
        return driver.callbacks->OnGetProperties(file, id, keys.Get(), given.Put());
      });
      break;
    case SensorOperation::kSetProperties:
      callback += "OnSetProperties";
      answer.result = CallDriver(world(), callback, [&] {
        return driver.callbacks->OnSetProperties(file, id, values.Get(), given.Put());
      });
      break;
    default:
      callback += "OnGetDataFields";
      answer.result = CallDriver(world(), callback, [&] {
        return driver.callbacks->OnGetDataFields(file, id, keys.Get(), given.Put());
      });
  }
  if (given) {
    answer.values.emplace();
    const HRESULT read = ReadValues(world(), *given.Get(), &*answer.values);
    if (SUCCEEDED(answer.result) && FAILED(read)) answer.result = read;
  } else if (SUCCEEDED(answer.result)) {
    Report(rule::kNoResult, callback);
  }
  return answer;
}

SensorAnswer ClassExtension::ServeKeys(Driver& driver, SensorOperation operation) {
  LPWSTR const id = driver.sensorId.data();
  const bool properties = operation == SensorOperation::kGetSupportedProperties;
  const std::string callback = properties ? "ISensorDriver::OnGetSupportedProperties"
                                          : "ISensorDriver::OnGetSupportedDataFields";
  ComPtr<IPortableDeviceKeyCollection> keys;
  SensorAnswer answer;
  answer.result = CallDriver(world(), callback, [&] {
    return properties ? driver.callbacks->OnGetSupportedProperties(id, keys.Put())
                      : driver.callbacks->OnGetSupportedDataFields(id, keys.Put());
  });
  if (FAILED(answer.result)) return answer;
  if (keys) {
    answer.result = ReadKeys(world(), *keys.Get(), &answer.keys);
  } else {
    Report(rule::kNoResult, callback);
  }
  return answer;
}

SensorAnswer ClassExtension::ServeEvents(Driver& driver) {
  GUID* events = nullptr;
  ULONG count = 0;
  SensorAnswer answer;
  answer.result = CallDriver(world(), "ISensorDriver::OnGetSupportedEvents", [&] {
    return driver.callbacks->OnGetSupportedEvents(driver.sensorId.data(), &events, &count);
  });
  if (SUCCEEDED(answer.result) && events != nullptr) answer.events.assign(events, events + count);
  CoTaskMemFree(events);
  return answer;
}

}  // namespace bench
