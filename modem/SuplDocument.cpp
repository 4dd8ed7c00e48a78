#include "modem/SuplDocument.h"

#include <string>

#include "base/ComTypes.h"
#include "modem/ErrorReport.h"
#include "modem/SuplDocument.trace.h"
#include "modem/XmlNodes.h"

namespace stelvane {

namespace {

constexpr std::size_t kMccLength = 3;
constexpr std::size_t kLongImsi = 15;  // its network code has 3 digits, every other one's has 2

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
    {kAddressTypeElement, &SuplRecord::m_strSupl_Address_type},
    {kAddressElement, &SuplRecord::m_strSupl_Address},
    {kPortElement, &SuplRecord::m_strSupl_Port_Number},
};
constexpr ChildField kVersionField = {kVersionElement, &SuplRecord::m_strSupl_Ver_Info};

HRESULT StoreChild(IXMLDOMNode* child, const std::string& name, const ChildField& field,
                   SuplRecord& record) {
  return name == field.name ? NodeText(child, record.*field.field) : S_OK;
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

HRESULT ReadFields(IXMLDOMNode* node, SuplRecord& record) {
  const HRESULT result = ForEachChild(node, [&record](IXMLDOMNode* child, const std::string& name) {
    if (name == kServerElement) return ReadServer(child, record);
    return StoreChild(child, name, kVersionField, record);
  });
  RETURN_IF_FAILED(result, RecordFailed);
  return result;
}

}  // namespace

HRESULT CreateSuplDocument(ComPtr<IXMLDOMDocument3>& document) {
  RETURN_IF_FAILED(
      CoCreateInstance(clsid::kDomDocument60, nullptr, CLSCTX_INPROC_SERVER,
                       iidOf<IXMLDOMDocument3>, reinterpret_cast<void**>(document.Put())),
      DomNotCreated);
  const HRESULT prepared = Prepare(document.Get());
  RETURN_IF_FAILED(prepared, DomNotPrepared);
  return prepared;
}

HRESULT LoadSuplDocument(IXMLDOMDocument3* document, const WCHAR* path, bool& loaded) {
  const TextVariant source(path);
  VARIANT_BOOL taken = VARIANT_FALSE;
  const HRESULT result = source.HasText() ? document->load(source.Get(), &taken) : E_OUTOFMEMORY;
  RETURN_IF_FAILED(result, LoadFailed);
  loaded = taken == VARIANT_TRUE;
  if (!loaded) return result;
  Bstr text;
  RETURN_IF_FAILED(document->get_xml(text.Put()), TextFailed);
  TRACE(FileText, text.Narrow().c_str());
  return result;
}

HRESULT FindSuplRecord(IXMLDOMDocument3* document, SuplRecord& record, ComPtr<IXMLDOMNode>& node) {
  HRESULT result = FindNetwork(document, record);
  if (FAILED(result)) return result;
  std::string key = record.m_strMcc + record.m_strMnc;
  if (record.m_strMcc.empty() || record.m_strMnc.empty()) {
    ReportError("Can not Find correct MCC/MNC from XML Error:", result);
    key = "Default";
  }
  result = FindRecord(document, key, node);
  if (SUCCEEDED(result) && !node) {
    ReportError("Error while calling selectSingleNode. Error:", result);
  }
  return result;
}

HRESULT ReadSuplRecord(IXMLDOMNode* node, SuplRecord& record) {
  const HRESULT result = ReadFields(node, record);
  TRACE(RecordRead, record.m_strMcc.c_str(), record.m_strMnc.c_str(),
        record.m_strSupl_Address_type.c_str(), record.m_strSupl_Address.c_str(),
        record.m_strSupl_Port_Number.c_str(), record.m_strSupl_Ver_Info.c_str());
  return result;
}

}  // namespace stelvane
