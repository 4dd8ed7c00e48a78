#include "workbench/imports/DriverModule.h"

#include <winternl.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "workbench/framework/Rules.h"
#include "workbench/imports/Redirector.h"

namespace bench {

namespace {

// The loader's notifications; ntdll exports them without a header.
struct LoaderNotice {
  ULONG flags;
  const UNICODE_STRING* fullName;
  const UNICODE_STRING* baseName;
  void* base;
  ULONG size;
};
constexpr ULONG kLoaded = 1;
using NoticeHandler = void(CALLBACK*)(ULONG reason, const LoaderNotice* notice, void* context);
using RegisterNotices = NTSTATUS(NTAPI*)(ULONG flags, NoticeHandler handler, void* context,
                                         void** cookie);
using UnregisterNotices = NTSTATUS(NTAPI*)(void* cookie);

template <typename Function>
Function LoaderFunction(const char* name) {
  const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(ntdll, name)));
}

// Watches one load: the loader tells of a module when its imports are bound and before it runs.
class LoadWatch {
 public:
  LoadWatch(const std::wstring& name, Redirector& redirector)
      : name_(name), redirector_(redirector) {
    const auto watch = LoaderFunction<RegisterNotices>("LdrRegisterDllNotification");
    if (watch == nullptr || watch(0, &OnNotice, this, &cookie_) != 0) {
      throw std::runtime_error("this system does not tell of modules being loaded");
    }
  }
  ~LoadWatch() { LoaderFunction<UnregisterNotices>("LdrUnregisterDllNotification")(cookie_); }
  LoadWatch(const LoadWatch&) = delete;
  LoadWatch& operator=(const LoadWatch&) = delete;

 private:
  static void CALLBACK OnNotice(ULONG reason, const LoaderNotice* notice, void* context) {
    const auto& watch = *static_cast<const LoadWatch*>(context);
    if (reason != kLoaded) return;
    const std::wstring_view name(notice->baseName->Buffer,
                                 notice->baseName->Length / sizeof(wchar_t));
    if (name.size() == watch.name_.size() &&
        _wcsnicmp(name.data(), watch.name_.data(), name.size()) == 0) {
      watch.redirector_.Attach(static_cast<HMODULE>(notice->base));
    }
  }

  const std::wstring name_;
  Redirector& redirector_;
  void* cookie_ = nullptr;
};

// A load or unload on this thread, which runs nothing of the module but its DllMain.
thread_local bool inDllMain = false;
class DllMainMark {
 public:
  DllMainMark() { inDllMain = true; }
  ~DllMainMark() { inDllMain = false; }
  DllMainMark(const DllMainMark&) = delete;
  DllMainMark& operator=(const DllMainMark&) = delete;
};

template <typename Pointer>
Pointer Require(HMODULE module, const std::string& file, const char* name) {
  void* const address = reinterpret_cast<void*>(GetProcAddress(module, name));
  if (address == nullptr) throw std::runtime_error(file + " has no export " + name);
  return reinterpret_cast<Pointer>(address);
}

}  // namespace

DriverModule::DriverModule(const std::filesystem::path& path, Redirector* redirector)
    : redirector_(redirector) {
  const std::string file = path.string();
  const std::filesystem::path full = std::filesystem::absolute(path).make_preferred();
  if (!std::filesystem::exists(full)) throw std::runtime_error(file + " does not exist");
  if (GetModuleHandleW(full.c_str()) != nullptr) {
    throw std::runtime_error(file + " is loaded already");
  }
  {
    const DllMainMark mark;
    std::optional<LoadWatch> watch;
    if (redirector != nullptr) watch.emplace(full.filename().wstring(), *redirector);
    module_ = LoadLibraryW(full.c_str());
  }
  if (module_ == nullptr) {
    const DWORD error = GetLastError();
    if (redirector != nullptr) redirector->Detach(false);
    throw std::runtime_error(file + " cannot be loaded, error " + std::to_string(error));
  }
  try {
    getClassObject_ = Require<decltype(getClassObject_)>(module_, file, "DllGetClassObject");
    canUnloadNow_ = Require<decltype(canUnloadNow_)>(module_, file, "DllCanUnloadNow");
    version_ = Require<const UMDF_VERSION_DATA*>(module_, file, "Microsoft_WDF_UMDF_Version");
    imports_ = ImportTable(module_).Functions();
  } catch (...) {
    Unload();
    throw;
  }
}

DriverModule::~DriverModule() {
  Unload();
}

bool DriverModule::InDllMain() {
  return inDllMain;
}

void DriverModule::ReportThrow(const char* name) const {
  if (redirector_ == nullptr) throw;
  redirector_->Broken().Add(rule::kExceptionFromExport, name);
}

void DriverModule::Unload() {
  {
    const DllMainMark mark;
    FreeLibrary(module_);
  }
  if (redirector_ == nullptr) return;
  HMODULE still = nullptr;
  const BOOL loaded = GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<const wchar_t*>(module_), &still);
  redirector_->Detach(loaded != FALSE);
}

}  // namespace bench
