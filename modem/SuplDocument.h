// The SUPL configuration file in the XML parser, and the steps in which a SIM is looked up in it.
#pragma once

#include <windows.h>

#include "base/ComPtr.h"
#include "modem/SuplRecord.h"
#include "platform/XmlDom.h"

namespace stelvane {

// What an operator's record is made of.
inline constexpr const char* kVersionElement = "Supl_Ver_Info";
inline constexpr const char* kServerElement = "SuplServer";
inline constexpr const char* kAddressTypeElement = "Supl_Address_type";
inline constexpr const char* kAddressElement = "Supl_Address";
inline constexpr const char* kPortElement = "Supl_Port_Number";

// All of these run on a thread that is initialised for COM and may throw std::bad_alloc.

/// An empty document, set to validate and to fetch nothing from outside.
HRESULT CreateSuplDocument(ComPtr<IXMLDOMDocument3>& document);

/// `loaded` tells whether the parser took the file; the status alone does not.
HRESULT LoadSuplDocument(IXMLDOMDocument3* document, const WCHAR* path, bool& loaded);

/// The element that serves the SIM of `record.m_strImsi`, whose network codes are filled in; they
/// stay empty when the default record serves it. No element is S_FALSE and a null node, and
/// reported.
HRESULT FindSuplRecord(IXMLDOMDocument3* document, SuplRecord& record, ComPtr<IXMLDOMNode>& node);

/// Fills the settings from a record's element. Those read before a failure are kept.
HRESULT ReadSuplRecord(IXMLDOMNode* node, SuplRecord& record);

}  // namespace stelvane
