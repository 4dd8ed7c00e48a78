#include "suplcheck/Entries.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "base/ComPtr.h"
#include "base/ComTypes.h"
#include "modem/SuplDocument.h"
#include "modem/XmlNodes.h"
#include "suplcheck/Text.h"

namespace suplcheck {

namespace {

using stelvane::Bstr;
using stelvane::ComPtr;

constexpr const char* kRecordElement = "SUPL";
// Misspelt by the case of its letters, the name is worth a word, too.
constexpr const wchar_t* kCandidates =
    L"//*[@SID or translate(local-name(), 'supl', 'SUPL') = 'SUPL']";
constexpr std::array<std::string_view, 3> kServerChildren = {
    stelvane::kAddressTypeElement, stelvane::kAddressElement, stelvane::kPortElement};

bool IsElement(IXMLDOMNode* node) {
  DOMNodeType type = NODE_INVALID;
  return SUCCEEDED(node->get_nodeType(&type)) && type == NODE_ELEMENT;
}

bool HasOnlyAscii(IXMLDOMNode* node) {
  Bstr text;
  if (FAILED(node->get_text(text.Put())) || text.Get() == nullptr) return true;
  const std::wstring_view view(text.Get(), SysStringLen(text.Get()));
  return std::ranges::all_of(view, [](wchar_t c) { return c < 0x80; });
}

// Notes a child, which the driver reads or passes over.
void NoteChild(IXMLDOMNode* child, const std::string& name, bool read, Entry& entry) {
  if (read) {
    ++entry.uses[name];
    if (name != stelvane::kServerElement && !HasOnlyAscii(child)) {
      entry.outsideAscii.push_back(name);
    }
  } else if (IsElement(child)) {
    entry.ignored.push_back(name);
  }
}

HRESULT NoteServer(IXMLDOMNode* server, Entry& entry) {
  return stelvane::ForEachChild(server, [&entry](IXMLDOMNode* child, const std::string& name) {
    const bool read = std::ranges::find(kServerChildren, name) != kServerChildren.end();
    NoteChild(child, name, read, entry);
    return S_OK;
  });
}

HRESULT NoteChildren(IXMLDOMNode* node, Entry& entry) {
  return stelvane::ForEachChild(node, [&entry](IXMLDOMNode* child, const std::string& name) {
    const bool server = name == stelvane::kServerElement;
    NoteChild(child, name, server || name == stelvane::kVersionElement, entry);
    return server ? NoteServer(child, entry) : S_OK;
  });
}

HRESULT ReadId(IXMLDOMNode* node, Entry& entry) {
  const Bstr query(L"@SID");
  ComPtr<IXMLDOMNode> attribute;
  const HRESULT result = node->selectSingleNode(query.Get(), attribute.Put());
  if (FAILED(result) || !attribute) return result;
  if (!HasOnlyAscii(attribute.Get())) entry.outsideAscii.emplace_back("SID");
  entry.id.emplace();
  return stelvane::NodeText(attribute.Get(), *entry.id);
}

// The driver's query finds elements of this name and of no namespace.
HRESULT ReadName(IXMLDOMNode* node, Entry& entry) {
  Bstr name;
  const HRESULT result = node->get_nodeName(name.Put());
  if (FAILED(result)) return result;
  entry.element = name.Narrow();
  Bstr space;
  node->get_namespaceURI(space.Put());
  entry.findable = entry.element == kRecordElement && SysStringLen(space.Get()) == 0;
  return result;
}

HRESULT ReadEntry(IXMLDOMNode* node, Entry& entry) {
  HRESULT result = ReadName(node, entry);
  if (SUCCEEDED(result)) result = ReadId(node, entry);
  if (SUCCEEDED(result)) result = stelvane::ReadSuplRecord(node, entry.record);
  if (SUCCEEDED(result)) result = NoteChildren(node, entry);
  return result;
}

}  // namespace

std::string Entry::Name() const {
  std::string name = findable ? "record" : "element " + Quoted(element);
  name += ' ' + std::to_string(number);
  return id ? name + " (SID " + Quoted(*id) + ")" : name;
}

std::string Entry::Beginning() const {
  std::string beginning = id.value_or("");
  std::erase(beginning, '_');
  return beginning;
}

HRESULT ReadEntries(IXMLDOMDocument3* document, std::vector<Entry>& entries) {
  const Bstr query(kCandidates);
  ComPtr<IXMLDOMNodeList> nodes;
  const HRESULT result = document->selectNodes(query.Get(), nodes.Put());
  if (FAILED(result)) return result;
  return stelvane::ForEachNode(nodes.Get(), [&entries](IXMLDOMNode* node, bool&) {
    Entry& entry = entries.emplace_back();
    entry.number = static_cast<int>(entries.size());
    return ReadEntry(node, entry);
  });
}

}  // namespace suplcheck
