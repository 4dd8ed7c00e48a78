// The driver DLL, loaded as the framework host loads it.
#pragma once

#include <windows.h>

#include <filesystem>
#include <vector>

#include "platform/WdfTypes.h"
#include "workbench/imports/ImportTable.h"

namespace bench {

class Redirector;

/// Holds a driver DLL loaded. With a redirector, its imports are replaced before its DllMain runs.
class DriverModule {
 public:
  /// Loads the DLL; the redirector, if given, must outlive the module. Throws std::runtime_error
  /// with one line for a person if the file is missing, is loaded already, refuses to load or lacks
  /// one of the three exports of a driver.
  explicit DriverModule(const std::filesystem::path& path, Redirector* redirector = nullptr);
  DriverModule(const DriverModule&) = delete;
  DriverModule& operator=(const DriverModule&) = delete;
  ~DriverModule();

  /// The export DllGetClassObject.
  HRESULT GetClassObject(REFCLSID classId, REFIID interfaceId, void** object) const {
    return CallExport("DllGetClassObject",
                      [&] { return getClassObject_(classId, interfaceId, object); });
  }
  /// The export DllCanUnloadNow.
  HRESULT CanUnloadNow() const {
    return CallExport("DllCanUnloadNow", [&] { return canUnloadNow_(); });
  }
  /// Whether the calling thread is inside of the DllMain of a module of this kind.
  static bool InDllMain();
  const UMDF_VERSION_DATA& Version() const { return *version_; }
  HMODULE Base() const { return module_; }
  /// An export by name, or null.
  FARPROC Export(const char* name) const { return GetProcAddress(module_, name); }
  /// What the DLL imports, by name.
  const std::vector<ImportedFunction>& Imports() const { return imports_; }

 private:
  void Unload();
  void ReportThrow(const char* name) const;
  /// An exception that comes out is reported, and the call has failed.
  template <typename Body>
  HRESULT CallExport(const char* name, Body body) const {
    try {
      return body();
    } catch (...) {
      ReportThrow(name);
      return E_UNEXPECTED;
    }
  }

  HMODULE module_ = nullptr;
  Redirector* redirector_;
  HRESULT(STDAPICALLTYPE* getClassObject_)(REFCLSID, REFIID, void**) = nullptr;
  HRESULT(STDAPICALLTYPE* canUnloadNow_)() = nullptr;
  const UMDF_VERSION_DATA* version_ = nullptr;
  std::vector<ImportedFunction> imports_;
};

}  // namespace bench
