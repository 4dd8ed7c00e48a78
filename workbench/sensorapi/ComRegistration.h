// Makes the Sensor API's classes creatable in this process, as the system's registry does.
// Windows only.
#pragma once

#include <windows.h>

#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "base/ComPtr.h"
#include "workbench/sensorapi/SensorService.h"

struct IClassFactory;

namespace bench {

enum class ApiClass { kValues, kKeyCollection, kValuesCollection, kClassExtension };

/// The name in "CoCreateInstance(<name>)", under which a creation is recorded and can be made to
/// fail.
std::string_view ApiClassName(ApiClass which);

/// While it lives, CoCreateInstance(CLSCTX_INPROC_SERVER) finds the three containers and the class
/// extension, on any thread of the process. Initializes COM for the multithreaded apartment on the
/// constructing thread and has to be destroyed on it; only one at a time. Throws std::runtime_error
/// when COM refuses.
class ComRegistration {
 public:
  /// The classes in `withheld` stay unregistered: creating them gives REGDB_E_CLASSNOTREG.
  explicit ComRegistration(SensorService& service, const std::vector<ApiClass>& withheld = {});
  ~ComRegistration();
  ComRegistration(const ComRegistration&) = delete;
  ComRegistration& operator=(const ComRegistration&) = delete;

  /// Takes a class away, or brings it back.
  void Withhold(ApiClass which);
  void Restore(ApiClass which);

 private:
  SensorService& service_;
  std::array<std::optional<DWORD>, 4> cookies_;
};

}  // namespace bench
