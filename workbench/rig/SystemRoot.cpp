#include "workbench/rig/SystemRoot.h"

#include <windows.h>

#include <array>
#include <atomic>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace bench {

namespace {

std::filesystem::path Variable(const wchar_t* name) {
  std::array<wchar_t, MAX_PATH> text{};
  GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size()));
  return text.data();
}

}  // namespace

SystemRoot::SystemRoot() : before_(Variable(L"systemroot")) {
  static std::atomic<int> last{0};
  folder_ = std::filesystem::temp_directory_path() /
            ("stelvane-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++last));
  std::filesystem::create_directories(ConfigFile().parent_path());
  SetEnvironmentVariableW(L"systemroot", folder_.wstring().c_str());
}

SystemRoot::~SystemRoot() {
  SetEnvironmentVariableW(L"systemroot", before_.wstring().c_str());
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::filesystem::path SystemRoot::ConfigFile() const {
  return folder_ / "System32" / "Drivers" / "Umdf" / "StelvaneSUPLInfo-DTD.xml";
}

void SystemRoot::WriteConfigFile(std::string_view text) {
  std::ofstream file(ConfigFile(), std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error("cannot write " + ConfigFile().string());
}

void SystemRoot::InstallConfigFile(const std::filesystem::path& from) {
  std::error_code error;
  std::filesystem::copy_file(from, ConfigFile(), std::filesystem::copy_options::overwrite_existing,
                             error);
  if (error) throw std::runtime_error("cannot read " + from.string() + ": " + error.message());
}

void SystemRoot::RemoveConfigFile() {
  std::filesystem::remove(ConfigFile());
}

}  // namespace bench
