#include "modem/SuplConfigFile.h"

#include <algorithm>
#include <iterator>

#include "base/ComPtr.h"
#include "base/ComTypes.h"
#include "modem/ErrorReport.h"
#include "modem/SuplConfigFile.trace.h"
#include "platform/XmlDom.h"

namespace stelvane {

namespace {

constexpr WCHAR kFilePath[] = L"\\System32\\Drivers\\Umdf\\StelvaneSUPLInfo-DTD.xml";
constexpr std::size_t kMccLength = 3;
constexpr std::size_t kLongImsi = 15;  // its network code has 3 digits, every other one's has 2

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

// Validation on, nothing fetched from outside, the file's own declaration allowed.
HRESULT Prepare(IXMLDOMDocument3* document) {
  HRESULT result = document->put_async(VARIANT_FALSE);
  if (SUCCEEDED(result)) result = document->put_validateOnParse(VARIANT_TRUE);
  if (SUCCEEDED(result)) result = document->put_resolveExternals(VARIANT_FALSE);
  const Bstr property(L"ProhibitDTD");
  const TextVariant no(L"False");
  document->setProperty(property.Get(), no.Get());
  return result;
}

// `loaded` tells whether the parser took the file; the status alone does not.
HRESULT LoadDocument(ComPtr<IXMLDOMDocument3>& document, bool& loaded) {
  RETURN_IF_FAILED(
      CoCreateInstance(clsid::kDomDocument60, nullptr, CLSCTX_INPROC_SERVER,
                       iidOf<IXMLDOMDocument3>, reinterpret_cast<void**>(document.Put())),
      DomNotCreated);
  RETURN_IF_FAILED(Prepare(document.Get()), DomNotPrepared);
  const TextVariant path(ConfigPath().c_str());
  VARIANT_BOOL taken = VARIANT_FALSE;
  const HRESULT result = path.HasText() ? document->load(path.Get(), &taken) : E_OUTOFMEMORY;
  RETURN_IF_FAILED(result, LoadFailed);
  loaded = taken == VARIANT_TRUE;
  return result;
}

HRESULT NodeText(IXMLDOMNode* node, std::string& text) {
  Bstr value;
  const HRESULT result = node->get_text(value.Put());
  text = value.Narrow();
  return result;
}

// Calls `visit` for each node until it gives a failure or `done` is set; the status of the last
// step is returned.
template <class Visit>
HRESULT ForEachNode(IXMLDOMNodeList* nodes, Visit&& visit) {
  if (nodes == nullptr) return S_FALSE;
  for (bool done = false;;) {
    ComPtr<IXMLDOMNode> node;
    HRESULT result = nodes->nextNode(node.Put());
    if (FAILED(result) || !node) return result;
    result = visit(node.Get(), done);
    if (FAILED(result) || done) return result;
  }
}

// Sets the network codes when the id of any record is how the IMSI begins. The codes come from
// the IMSI, and only its length decides where they end: this is meant.
HRESULT FindNetwork(IXMLDOMDocument3* document, SuplRecord& record) {
  const Bstr query(L"//@SID");
  ComPtr<IXMLDOMNodeList> ids;
  const HRESULT selected = document->selectNodes(query.Get(), ids.Put());
  RETURN_IF_FAILED(selected, WalkFailed);
  const HRESULT walked = ForEachNode(ids.Get(), [&record](IXMLDOMNode* id, bool& done) {
    std::string text;
    const HRESULT result = NodeText(id, text);
    if (FAILED(result)) return result;
    std::erase(text, '_');
    if (!record.m_strImsi.starts_with(text)) return result;
    const std::size_t keyLength = record.m_strImsi.size() == kLongImsi ? 6 : 5;
    const std::string key = record.m_strImsi.substr(0, keyLength);
    record.m_strMcc = key.substr(0, kMccLength);
    record.m_strMnc = key.substr(kMccLength);
    done = true;
    return result;
  });
  RETURN_IF_FAILED(walked, WalkFailed);
  return walked;
}

std::basic_string<WCHAR> Widen(const std::string& text) {
  const int narrow = static_cast<int>(text.size());
  const int length = MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), narrow, nullptr, 0);
  std::basic_string<WCHAR> wide(static_cast<std::size_t>(length), WCHAR{0});
  MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), narrow, wide.data(), length);
  return wide;
}

HRESULT FindRecord(IXMLDOMDocument3* document, const std::string& key, ComPtr<IXMLDOMNode>& node) {
  const Bstr query(Widen("//SUPL[@SID='_" + key + "']").c_str());
  const HRESULT selected = document->selectSingleNode(query.Get(), node.Put());
  RETURN_IF_FAILED(selected, QueryFailed);
  if (!node) return selected;
  Bstr text;
  RETURN_IF_FAILED(node->get_xml(text.Put()), RecordTextFailed);
  Bstr name;
  RETURN_IF_FAILED(node->get_nodeName(name.Put()), RecordTextFailed);
  TRACE(RecordFound, name.Narrow().c_str(), text.Narrow().c_str());
  return selected;
}

// Which child's text goes where; a later child of the same name overwrites an earlier one.
struct ChildField {
  const char* name;
  std::string SuplRecord::*field;
};
constexpr ChildField kServerFields[] = {
    {"Supl_Address_type", &SuplRecord::m_strSupl_Address_type},
    {"Supl_Address", &SuplRecord::m_strSupl_Address},
    {"Supl_Port_Number", &SuplRecord::m_strSupl_Port_Number},
};
constexpr ChildField kRecordFields[] = {{"Supl_Ver_Info", &SuplRecord::m_strSupl_Ver_Info}};
constexpr const char* kServerElement = "SuplServer";

HRESULT StoreChild(IXMLDOMNode* child, const std::string& name, const ChildField& field,
                   SuplRecord& record) {
  return name == field.name ? NodeText(child, record.*field.field) : S_OK;
}

// Children are known by their local name; text and comment nodes have none.
template <class Visit>
HRESULT ForEachChild(IXMLDOMNode* parent, Visit&& visit) {
  ComPtr<IXMLDOMNodeList> children;
  const HRESULT result = parent->get_childNodes(children.Put());
  if (FAILED(result)) return result;
  return ForEachNode(children.Get(), [&visit](IXMLDOMNode* child, bool&) {
    Bstr name;
    const HRESULT named = child->get_baseName(name.Put());
    return FAILED(named) ? named : visit(child, name.Narrow());
  });
}

HRESULT ReadServer(IXMLDOMNode* server, SuplRecord& record) {
  return ForEachChild(server, [&record](IXMLDOMNode* child, const std::string& name) {
    HRESULT result = S_OK;
    for (const ChildField& field : kServerFields) {
      if (SUCCEEDED(result)) result = StoreChild(child, name, field, record);
    }
    return result;
  });
}

HRESULT ReadRecord(IXMLDOMNode* node, SuplRecord& record) {
  const HRESULT result = ForEachChild(node, [&record](IXMLDOMNode* child, const std::string& name) {
    if (name == kServerElement) return ReadServer(child, record);
    return StoreChild(child, name, kRecordFields[0], record);
  });
  RETURN_IF_FAILED(result, RecordFailed);
  return result;
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
  bool loaded = false;
  HRESULT result = LoadDocument(document, loaded);
  if (FAILED(result)) return result;
  if (!loaded) {
    // Not a failure: the empty address type stops the provisioning afterwards. This is meant.
    ReportError("Failed to load DOM from StelvaneSUPLInfo-DTD.xml. Error:", result);
    return result;
  }
  Bstr text;
  RETURN_IF_FAILED(document->get_xml(text.Put()), TextFailed);
  TRACE(FileText, text.Narrow().c_str());

  result = FindNetwork(document.Get(), record);
  if (FAILED(result)) return result;
  std::string key = record.m_strMcc + record.m_strMnc;
  if (record.m_strMcc.empty() || record.m_strMnc.empty()) {
    ReportError("Can not Find correct MCC/MNC from XML Error:", result);
    key = "Default";
  }
  ComPtr<IXMLDOMNode> node;
  result = FindRecord(document.Get(), key, node);
  if (FAILED(result)) return result;
  if (!node) {
    ReportError("Error while calling selectSingleNode. Error:", result);
    return result;
  }
  result = ReadRecord(node.Get(), record);
  TRACE(RecordRead, record.m_strMcc.c_str(), record.m_strMnc.c_str(),
        record.m_strSupl_Address_type.c_str(), record.m_strSupl_Address.c_str(),
        record.m_strSupl_Port_Number.c_str(), record.m_strSupl_Ver_Info.c_str());
  return result;
}

}  // namespace stelvane
