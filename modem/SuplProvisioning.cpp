#include "modem/SuplProvisioning.h"

#include <new>

#include "modem/ErrorReport.h"
#include "modem/SuplConfigFile.h"
#include "modem/SuplProvisioning.trace.h"

namespace stelvane {

HRESULT SuplProvisioning::ConfigureSupl() noexcept {
  const EngineUse use(channel_);
  try {
    return ReadSimAndConfigure();
  } catch (const std::bad_alloc&) {
    TRACE(ProvisioningOutOfMemory);
    return S_OK;
  }
}

HRESULT SuplProvisioning::ReadSimAndConfigure() {
  const HRESULT result = engine_.SendCommand("AT+CIMI");
  if (FAILED(result)) {
    ReportError("Not Configuring SUPL Information", result);
    return S_OK;
  }
  record_.m_strImsi = answers_.Imsi();
  if (record_.m_strImsi == m_strProvisionedImsi) {
    TRACE(SimKnown, record_.m_strImsi.c_str());
    return result;
  }
  return WriteSettings(result);
}

// `result` is that of reading the SIM: what a record that cannot be used leaves as the outcome.
HRESULT SuplProvisioning::WriteSettings(HRESULT result) {
  TRACE(LoadBegins);
  const HRESULT loaded = LoadSuplRecord(record_);
  if (FAILED(loaded)) {
    TRACE(RecordNotLoaded, loaded);
    return result;
  }
  TRACE(RecordLoaded, loaded);
  std::string slpCommand;
  if (FAILED(BuildSlpCommand(record_, slpCommand))) return result;
  if (const HRESULT sent = engine_.SendCommand(slpCommand); FAILED(sent)) {
    ReportError("Not able to Configure SUPL Information using Command \"XLCSSLP\"", sent);
  }
  if (const HRESULT sent = engine_.SendCommand(TerminalCommand()); FAILED(sent)) {
    ReportError("Not able to updates the terminal information using Command \"XLCSTER\"", sent);
  }
  const HRESULT sent = engine_.SendCommand(VersionCommand(record_));
  if (FAILED(sent)) {
    ReportError("Not able to Set SUPL Vestion using command \"XLCSSUPLVER\"", sent);
    return S_OK;
  }
  // Only the version command counts: the identity is marked even when the two before it failed.
  m_strProvisionedImsi = record_.m_strImsi;
  TRACE(SimProvisioned, m_strProvisionedImsi.c_str());
  return sent;
}

HRESULT BuildSlpCommand(const SuplRecord& record, std::string& command) {
  command.clear();
  const std::string& type = record.m_strSupl_Address_type;
  const std::string& address = record.m_strSupl_Address;
  if (type != "0" && type != "1" && type != "2") {
    ReportError("Error while Creating \"XLCSSLP\" Cpmmand ", E_FAIL);
    return E_FAIL;
  }
  if (address.empty() && type != "2") {
    ReportError("slp_address is a mandatory parameter if m_strSupl_Address_type is \"0\" or \"1\" ",
                E_INVALIDARG);
    return E_INVALIDARG;
  }
  command = "AT+XLCSSLP=" + type + ",";
  if (!address.empty()) command += '"' + address + '"';
  command += "," + record.m_strSupl_Port_Number;
  return S_OK;
}

std::string TerminalCommand() {
  return BuildCommandLine("AT", "XLCSTER", "1");
}

std::string VersionCommand(const SuplRecord& record) {
  return BuildCommandLine("AT", "XLCSSUPLVER", record.m_strSupl_Ver_Info);
}

}  // namespace stelvane
