// Interface ids as people read them.
#pragma once

#include <guiddef.h>

#include <cstring>
#include <string>

namespace bench {

inline bool SameGuid(const GUID& a, const GUID& b) {
  return std::memcmp(&a, &b, sizeof(GUID)) == 0;
}

/// "IWDFDevice"; "{...}" for an id that the workbench does not know.
std::string InterfaceName(const GUID& iid);

}  // namespace bench
