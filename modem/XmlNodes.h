// Walks over the nodes of an XML document. A visitor's failure ends the walk and is its result.
#pragma once

#include <windows.h>

#include <string>

#include "base/ComPtr.h"
#include "base/ComTypes.h"
#include "platform/XmlDom.h"

namespace stelvane {

/// A text that cannot be read leaves `text` as it was.
inline HRESULT NodeText(IXMLDOMNode* node, std::string& text) {
  Bstr value;
  const HRESULT result = node->get_text(value.Put());
  if (SUCCEEDED(result)) text = value.Narrow();
  return result;
}

/// Calls `visit(node, done)` for each node until it gives a failure or sets `done`; the status of
/// the last step is returned.
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

/// Calls `visit(child, localName)` for each child; text and comment nodes have an empty name.
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

}  // namespace stelvane
