#include "workbench/imports/ImportTable.h"

#include <cstdint>
#include <cstring>

namespace bench {

namespace {

bool SameDll(std::string_view a, std::string_view b) {
  return a.size() == b.size() && _strnicmp(a.data(), b.data(), a.size()) == 0;
}

// The loader keeps the table read-only; each write opens the page and closes it again.
void Write(void** slot, void* value) {
  DWORD protection = 0;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
  *slot = value;
  VirtualProtect(slot, sizeof *slot, protection, &protection);
}

}  // namespace

ImportTable::ImportTable(HMODULE module) {
  auto* const base = reinterpret_cast<std::uint8_t*>(module);
  const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& directory =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (directory.VirtualAddress == 0) return;
  for (const auto* descriptor =
           reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
       descriptor->Name != 0; ++descriptor) {
    const auto* name =
        reinterpret_cast<const IMAGE_THUNK_DATA*>(base + descriptor->OriginalFirstThunk);
    auto* slot = reinterpret_cast<void**>(base + descriptor->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* const byName =
          reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
      entries_.push_back({{reinterpret_cast<const char*>(base + descriptor->Name),
                           reinterpret_cast<const char*>(byName->Name)},
                          slot,
                          *slot});
    }
  }
}

std::vector<ImportedFunction> ImportTable::Functions() const {
  std::vector<ImportedFunction> functions;
  for (const Entry& entry : entries_) functions.push_back(entry.function);
  return functions;
}

void* ImportTable::Replace(std::string_view dll, std::string_view name, void* replacement) {
  for (const Entry& entry : entries_) {
    if (entry.function.name != name || !SameDll(entry.function.dll, dll)) continue;
    void* const previous = *entry.slot;
    Write(entry.slot, replacement);
    return previous;
  }
  return nullptr;
}

void ImportTable::Restore() {
  for (const Entry& entry : entries_) {
    if (*entry.slot != entry.first) Write(entry.slot, entry.first);
  }
}

}  // namespace bench
