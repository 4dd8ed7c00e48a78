// In the place of the configuration file's reader, which needs the platform's XML parser: the file
// holds at most one record, which is everybody's.
#include "modem/SuplConfigFile.h"

#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "tests/native/Native.h"

namespace {

std::mutex fileLock;
std::optional<stelvane::SuplRecord> fileRecord;  // guarded by fileLock

}  // namespace

void native::SetSuplRecord(std::optional<stelvane::SuplRecord> record) {
  const std::lock_guard lock(fileLock);
  fileRecord = std::move(record);
}

HRESULT stelvane::LoadSuplRecord(SuplRecord& record) {
  if (record.m_strImsi.empty()) return E_FAIL;
  const std::lock_guard lock(fileLock);
  std::string imsi = std::move(record.m_strImsi);
  record = fileRecord.value_or(SuplRecord());
  record.m_strImsi = std::move(imsi);
  return fileRecord ? S_OK : S_FALSE;
}
