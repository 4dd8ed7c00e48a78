// Makes the XML parser's calls visible and able to fail, like those of the framework.
#pragma once

#include <windows.h>

#include "workbench/framework/CallRecord.h"

namespace bench {

/// While it lives, documents that this process creates are the system's own, with the methods that
/// the driver uses recorded under names such as "IXMLDOMNode::get_text". COM must be initialised on
/// the calling thread; only one at a time. Throws std::runtime_error when COM refuses.
class XmlCalls {
 public:
  explicit XmlCalls(CallRecord& calls);
  ~XmlCalls();
  XmlCalls(const XmlCalls&) = delete;
  XmlCalls& operator=(const XmlCalls&) = delete;

 private:
  DWORD registration_ = 0;
};

}  // namespace bench
