// The file as the driver's reader takes it, or why it would not.
#pragma once

#include <string>

#include "base/ComPtr.h"
#include "platform/XmlDom.h"
#include "suplcheck/Report.h"

namespace suplcheck {

/// Null when the driver could not use the file; why is in the report then.
stelvane::ComPtr<IXMLDOMDocument3> LoadFile(const std::wstring& name, Report& report);

/// The parser's own words, its code and where it stopped; `error` may be null.
void ReportParseError(const char* what, IXMLDOMParseError* error, Report& report);

}  // namespace suplcheck
