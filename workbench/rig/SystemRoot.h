// The driver's SUPL configuration file, in a system folder of the run's own.
#pragma once

#include <filesystem>
#include <string_view>

namespace bench {

/// Points the process's "systemroot" at a folder of its own while it lives, so that runs do not
/// share a configuration file. Starts without one. Not for several threads.
class SystemRoot {
 public:
  SystemRoot();
  ~SystemRoot();
  SystemRoot(const SystemRoot&) = delete;
  SystemRoot& operator=(const SystemRoot&) = delete;

  /// Where the driver looks for the file.
  std::filesystem::path ConfigFile() const;
  void WriteConfigFile(std::string_view text);
  /// Copies a file there; throws std::runtime_error with one line for a person.
  void InstallConfigFile(const std::filesystem::path& from);
  void RemoveConfigFile();

 private:
  std::filesystem::path folder_;
  std::filesystem::path before_;
};

}  // namespace bench
