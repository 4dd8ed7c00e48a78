// The import table of a loaded module: what it calls in other modules, and the slots to replace.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// One function that a module imports by name.
struct ImportedFunction {
  std::string dll;
  std::string name;
};

/// The name imports of one loaded module. Not thread-safe: replace before the module runs, restore
/// when nothing of it runs.
class ImportTable {
 public:
  ImportTable() = default;
  /// Reads the table of the module loaded at `module`.
  explicit ImportTable(HMODULE module);

  std::vector<ImportedFunction> Functions() const;

  /// Puts `replacement` into the slot of `name` (exact case) from `dll` (any case). Returns the
  /// pointer that was there, or null if the module does not import the function.
  void* Replace(std::string_view dll, std::string_view name, void* replacement);

  /// Puts back every pointer that was there first.
  void Restore();

 private:
  struct Entry {
    ImportedFunction function;
    void** slot;
    void* first;
  };
  std::vector<Entry> entries_;
};

}  // namespace bench
