#include "modem/SuplConfigFile.h"

#include <iterator>
#include <string>
#include <utility>

#include "base/ComPtr.h"
#include "modem/ErrorReport.h"
#include "modem/SuplDocument.h"

namespace stelvane {

namespace {

constexpr WCHAR kFilePath[] = L"\\System32\\Drivers\\Umdf\\StelvaneSUPLInfo-DTD.xml";

// The system root and the file's place below it; without a system root the load fails later.
std::basic_string<WCHAR> ConfigPath() {
  WCHAR root[MAX_PATH] = {};
  const DWORD length = GetEnvironmentVariableW(L"systemroot", root, std::size(root));
  if (length == 0 || length >= std::size(root)) {
    ReportError("Failed to Get Environment Variable \"systemroot\". Error:", E_FAIL);
    root[0] = 0;
  }
  return std::basic_string<WCHAR>(root) + kFilePath;
}

}  // namespace

HRESULT LoadSuplRecord(SuplRecord& record) {
  if (record.m_strImsi.empty()) {
    ReportError("IMSI Value Not Set. Error:", 0);
    return E_FAIL;
  }
  SuplRecord fresh;
  fresh.m_strImsi = std::move(record.m_strImsi);
  record = std::move(fresh);

  ComPtr<IXMLDOMDocument3> document;
  HRESULT result = CreateSuplDocument(document);
  if (FAILED(result)) return result;
  bool loaded = false;
  result = LoadSuplDocument(document.Get(), ConfigPath().c_str(), loaded);
  if (FAILED(result)) return result;
  if (!loaded) {
    // Not a failure: the empty address type stops the provisioning afterwards. This is meant.
    ReportError("Failed to load DOM from StelvaneSUPLInfo-DTD.xml. Error:", result);
    return result;
  }
  ComPtr<IXMLDOMNode> node;
  result = FindSuplRecord(document.Get(), record, node);
  if (FAILED(result) || !node) return result;
  return ReadSuplRecord(node.Get(), record);
}

}  // namespace stelvane
