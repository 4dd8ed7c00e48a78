// The newest document interface of the XML parser, which adds two methods to its base.
#pragma once

#include <windows.h>

#include <msxml2.h>

#include "platform/Iid.h"

struct IXMLDOMDocument3 : public IXMLDOMDocument2 {
  virtual HRESULT STDMETHODCALLTYPE validateNode(IXMLDOMNode* node, IXMLDOMParseError** error) = 0;
  virtual HRESULT STDMETHODCALLTYPE importNode(IXMLDOMNode* node, VARIANT_BOOL deep,
                                               IXMLDOMNode** clone) = 0;
};
template <>
inline constexpr GUID iidOf<IXMLDOMDocument3> = {
    0x2933bf96, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};

namespace clsid {
inline constexpr GUID kDomDocument60 = {
    0x88d96a05, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};
}  // namespace clsid
