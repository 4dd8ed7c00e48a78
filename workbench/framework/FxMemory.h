// A block of bytes that requests and readers carry.
#pragma once

#include <string_view>
#include <vector>

#include "platform/WdfRequest.h"
#include "workbench/framework/FxObject.h"

namespace bench {

class FxMemory final : public FxObject<IWDFMemory> {
 public:
  FxMemory(const World& world, std::string_view kind, DeletedBy deletedBy, std::size_t size);
  FxMemory(const World& world, std::string_view kind, DeletedBy deletedBy,
           std::string_view contents);

  std::string_view Bytes() const { return {bytes_.data(), bytes_.size()}; }

  HRESULT STDMETHODCALLTYPE CopyFromMemory(IWDFMemory* source,
                                           PWDFMEMORY_OFFSET sourceOffset) override;
  HRESULT STDMETHODCALLTYPE CopyToBuffer(ULONG_PTR sourceOffset, void* targetBuffer,
                                         SIZE_T byteCount) override;
  HRESULT STDMETHODCALLTYPE CopyFromBuffer(ULONG_PTR destOffset, void* sourceBuffer,
                                           SIZE_T byteCount) override;
  SIZE_T STDMETHODCALLTYPE GetSize() override;
  void* STDMETHODCALLTYPE GetDataBuffer(SIZE_T* bufferSize) override;
  void STDMETHODCALLTYPE SetBuffer(void* buffer, SIZE_T bufferSize) override;

 protected:
  void* Find(const GUID& iid) override { return Match<IWDFMemory, IWDFObject>(this, iid); }
  void OnDestroyed() override;

 private:
  /// Reports a range that does not lie inside the memory.
  bool HasRange(std::size_t offset, std::size_t count) const;

  std::vector<char> bytes_;
};

}  // namespace bench
