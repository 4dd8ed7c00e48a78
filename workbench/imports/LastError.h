// Keeps the calling thread's last error through work that the caller must not notice.
#pragma once

#include <windows.h>

namespace bench {

class KeepLastError {
 public:
  KeepLastError() = default;
  KeepLastError(const KeepLastError&) = delete;
  KeepLastError& operator=(const KeepLastError&) = delete;
  ~KeepLastError() { SetLastError(error_); }

 private:
  const DWORD error_ = GetLastError();
};

}  // namespace bench
