// Functions that do what they always do, unless the fault plan has them fail.
#include <objbase.h>
#include <oleauto.h>
#include <propidl.h>

#include "workbench/imports/Hooks.h"

namespace bench {

std::span<const Hook> CountedHooks() {
  static const Hook kHooks[] = {
      Count<ImportIndex("DisableThreadLibraryCalls"), decltype(DisableThreadLibraryCalls)>(),
      Count<ImportIndex("SystemTimeToFileTime"), decltype(SystemTimeToFileTime)>(),
      Count<ImportIndex("FileTimeToSystemTime"), decltype(FileTimeToSystemTime)>(),
      Count<ImportIndex("GetEnvironmentVariableW"), decltype(GetEnvironmentVariableW)>(),
      Count<ImportIndex("ExpandEnvironmentStringsW"), decltype(ExpandEnvironmentStringsW)>(),
      Count<ImportIndex("FormatMessageW"), decltype(FormatMessageW)>(),
      Count<ImportIndex("MultiByteToWideChar"), decltype(MultiByteToWideChar)>(),
      Count<ImportIndex("WideCharToMultiByte"), decltype(WideCharToMultiByte)>(),
      Count<ImportIndex("FlsAlloc"), decltype(FlsAlloc)>(),
      Count<ImportIndex("FlsSetValue"), decltype(FlsSetValue)>(),
      Count<ImportIndex("CoCreateInstance"), decltype(CoCreateInstance)>(),
      Count<ImportIndex("CoTaskMemAlloc"), decltype(CoTaskMemAlloc)>(),
      Count<ImportIndex("PropVariantCopy"), decltype(PropVariantCopy)>(),
      Count<ImportIndex("SysAllocString"), decltype(SysAllocString)>(),
      Count<ImportIndex("SysAllocStringLen"), decltype(SysAllocStringLen)>(),
      Count<ImportIndex("SysAllocStringByteLen"), decltype(SysAllocStringByteLen)>(),
  };
  return kHooks;
}

}  // namespace bench
