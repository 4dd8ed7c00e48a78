#include "sensor/RadioControl.h"

#include <cstring>

#include "sensor/RadioControl.trace.h"
#include "sensor/SensorCore.h"

namespace stelvane {

namespace {

constexpr ULONG kHighestRadioState = 6;
constexpr HRESULT kBufferTooSmall = static_cast<HRESULT>(0x8007007AL);

}  // namespace

HRESULT ReadRadioState(SensorCore& core, IWDFIoRequest* request, RadioValue which) {
  const ComPtr<ModemControl> modem = core.Modem();
  if (!modem) {
    TRACE(NoModemToRead);
    return E_FAIL;
  }
  ULONG value = which == RadioValue::kCurrent ? static_cast<ULONG>(modem->Radio().radioOff)
                                              : modem->Radio().previousRadioState.load();
  ComPtr<IWDFMemory> output;
  request->GetOutputMemory(output.Put());
  if (!output || output->GetSize() < sizeof(value)) {
    TRACE(OutputTooSmall);
    return kBufferTooSmall;
  }
  const HRESULT result = output->CopyFromBuffer(0, &value, sizeof(value));
  if (FAILED(result)) TRACE(OutputNotWritten, result);
  return result;
}

HRESULT SetRadioState(SensorCore& core, IWDFIoRequest* request, bool restoreOnly) {
  const ComPtr<ModemControl> modem = core.Modem();
  if (!modem) {
    TRACE(NoModemToSet);
    return E_FAIL;
  }
  ComPtr<IWDFMemory> input;
  request->GetInputMemory(input.Put());
  if (!input) return S_OK;
  SIZE_T size = 0;
  const void* const data = input->GetDataBuffer(&size);
  ULONG state = 0;
  if (data == nullptr || size != sizeof(state)) return S_OK;
  std::memcpy(&state, data, sizeof(state));
  if (state > kHighestRadioState) return S_OK;
  return core.Machine().SetRadioState(*modem.Get(), state, restoreOnly);
}

}  // namespace stelvane
