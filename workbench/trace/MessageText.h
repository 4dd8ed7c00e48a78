// A trace message as a person reads it.
#pragma once

#include <string>
#include <string_view>

#include "workbench/trace/TraceFormats.h"
#include "workbench/trace/TraceRecord.h"

namespace bench {

struct MessageText {
  std::string level;  // "error"; empty when the message is not known
  std::string place;  // "Driver.cpp OnDeviceAdd"
  std::string text;
  bool decoded = false;  // else `text` says why not and shows the bytes
};

/// Never fails: a message that no format fits is shown by its GUID, number and bytes.
MessageText DecodeMessage(const TraceFormats& formats, const TraceRecord& record);

/// "error       Driver.cpp OnDeviceAdd: the text", as both programs show it.
std::string MessageLine(const MessageText& message);

/// Fills the inserts of a format's text: "%10!08x!", "%!FUNC!", "%%". A place that cannot be filled
/// stays as it stands and clears `whole`.
std::string FillText(const TraceFormat& format, const std::vector<TraceValue>& values, bool& whole);

}  // namespace bench
