#include "workbench/framework/DriverCall.h"

namespace bench {

namespace {

struct NamedCallback {
  const char* name;
  GUID iid;
};

constexpr NamedCallback kDeviceCallbacks[] = {
    {"IFileCallbackClose",
     {0xc28fd731, 0xf3f1, 0x4573, {0x97, 0xdc, 0x62, 0x0f, 0x72, 0xd0, 0x13, 0xa6}}},
    {"IPnpCallbackHardware2",
     {0x1493cd1b, 0xc546, 0x46bb, {0xbf, 0x47, 0xb2, 0x74, 0x65, 0x09, 0x33, 0x93}}},
    {"IPnpCallbackHardwareInterrupt",
     {0x3856fef1, 0xa858, 0x41fd, {0x9b, 0xe4, 0xfa, 0x90, 0x01, 0x09, 0x99, 0xb1}}},
    {"IPnpCallbackRemoteInterfaceNotification",
     {0xf9d48f27, 0xbdbe, 0x4a96, {0xaf, 0x96, 0x0e, 0x53, 0xe2, 0xa4, 0x36, 0xec}}},
    {"IPowerPolicyCallbackWakeFromS0",
     {0x7ee9f0fa, 0x5a1a, 0x48df, {0xa3, 0x5e, 0x8d, 0xb4, 0x2f, 0x51, 0x9b, 0x66}}},
    {"IPowerPolicyCallbackWakeFromSx",
     {0x3ab1426d, 0x689c, 0x4220, {0x90, 0x1e, 0x03, 0xc6, 0xd9, 0x09, 0xb5, 0xf5}}},
};

constexpr NamedCallback kQueueCallbacks[] = {
    {"IQueueCallbackCreate",
     {0x7d8899f0, 0x8da9, 0x435f, {0x98, 0x3c, 0x7e, 0x17, 0xd4, 0x35, 0x69, 0x97}}},
    {"IQueueCallbackDefaultIoHandler",
     {0x15fb6d38, 0xfdd8, 0x4005, {0x8e, 0x55, 0xeb, 0x0b, 0x98, 0x31, 0x34, 0x99}}},
    {"IQueueCallbackRead",
     {0xc3072620, 0x1da6, 0x48fb, {0xb4, 0xfe, 0xed, 0x65, 0x2b, 0x16, 0xae, 0xb2}}},
    {"IQueueCallbackWrite",
     {0x4888cbc5, 0x3fa2, 0x4ea3, {0x89, 0xa3, 0xc2, 0x0e, 0xd6, 0xe0, 0x47, 0x78}}},
    {"IQueueCallbackIoResume",
     {0xbee9fd3c, 0x3dda, 0x4d9d, {0xa8, 0xfc, 0x02, 0xc3, 0x8d, 0x79, 0xf6, 0x63}}},
    {"IQueueCallbackIoStop",
     {0x3de3b961, 0x88fb, 0x435a, {0x9c, 0x14, 0x08, 0x68, 0xfb, 0x4f, 0xc6, 0x23}}},
    {"IQueueCallbackStateChange",
     {0xe7ece381, 0x7cb1, 0x468a, {0xbc, 0x43, 0xab, 0xd5, 0x94, 0x8f, 0xfc, 0x75}}},
};

void AskForUndriven(const World& world, IUnknown& object, const NamedCallback& callback) {
  void* const found = AskFor(world, object, callback.iid);
  if (found == nullptr) return;
  static_cast<IUnknown*>(found)->Release();
  world.ledger.Report(rule::kUnexpectedCall,
                      std::string("callback interface ") + callback.name + " is offered");
}

}  // namespace

void* AskFor(const World& world, IUnknown& object, const GUID& iid) {
  // A value that a correct answer replaces in every case.
  static int untouched = 0;
  void* found = &untouched;
  HRESULT result = E_NOINTERFACE;
  try {
    result = object.QueryInterface(iid, &found);
  } catch (...) {
    world.ledger.Report(rule::kEscapedException, "IUnknown::QueryInterface");
    return nullptr;
  }
  const bool given = found != nullptr && found != &untouched;
  if (SUCCEEDED(result) == given && found != &untouched) return found;
  world.ledger.Report(rule::kQueryInterface, "callback object asked for " + InterfaceName(iid) +
                                                 ": result and pointer differ");
  return SUCCEEDED(result) && given ? found : nullptr;
}

void AskForUndrivenDeviceCallbacks(const World& world, IUnknown& object) {
  for (const NamedCallback& callback : kDeviceCallbacks) AskForUndriven(world, object, callback);
}

void AskForUndrivenQueueCallbacks(const World& world, IUnknown& object) {
  for (const NamedCallback& callback : kQueueCallbacks) AskForUndriven(world, object, callback);
}

}  // namespace bench
