#include "workbench/framework/FxMemory.h"

#include <cstring>

namespace bench {

FxMemory::FxMemory(const World& world, std::string_view kind, DeletedBy deletedBy, std::size_t size)
    : FxObject(world, kind, deletedBy), bytes_(size) {}

FxMemory::FxMemory(const World& world, std::string_view kind, DeletedBy deletedBy,
                   std::string_view contents)
    : FxObject(world, kind, deletedBy), bytes_(contents.begin(), contents.end()) {}

HRESULT FxMemory::CopyFromMemory(IWDFMemory*, PWDFMEMORY_OFFSET) {
  return Unexpected("IWDFMemory::CopyFromMemory");
}

HRESULT FxMemory::CopyToBuffer(ULONG_PTR sourceOffset, void* targetBuffer, SIZE_T byteCount) {
  return Invoke("IWDFMemory::CopyToBuffer", [&] {
    if (!HasRange(sourceOffset, byteCount)) return kInsufficientBuffer;
    std::memcpy(targetBuffer, bytes_.data() + sourceOffset, byteCount);
    return S_OK;
  });
}

HRESULT FxMemory::CopyFromBuffer(ULONG_PTR destOffset, void* sourceBuffer, SIZE_T byteCount) {
  return Invoke("IWDFMemory::CopyFromBuffer", [&] {
    if (!HasRange(destOffset, byteCount)) return kInsufficientBuffer;
    std::memcpy(bytes_.data() + destOffset, sourceBuffer, byteCount);
    return S_OK;
  });
}

SIZE_T FxMemory::GetSize() {
  return InvokeFor("IWDFMemory::GetSize", SIZE_T{0}, [&] { return SIZE_T{bytes_.size()}; });
}

void* FxMemory::GetDataBuffer(SIZE_T* bufferSize) {
  if (bufferSize != nullptr) *bufferSize = 0;
  return InvokeFor<void*>("IWDFMemory::GetDataBuffer", nullptr, [&]() -> void* {
    if (bufferSize != nullptr) *bufferSize = bytes_.size();
    return bytes_.data();
  });
}

void FxMemory::SetBuffer(void*, SIZE_T) {
  Unexpected("IWDFMemory::SetBuffer");
}

void FxMemory::OnDestroyed() {
  std::vector<char>().swap(bytes_);
}

bool FxMemory::HasRange(std::size_t offset, std::size_t count) const {
  if (offset <= bytes_.size() && count <= bytes_.size() - offset) return true;
  Report(rule::kBadArgument, "copy beyond the end of the memory");
  return false;
}

}  // namespace bench
