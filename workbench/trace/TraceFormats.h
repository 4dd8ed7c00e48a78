// The texts of the trace messages, from the trace format (.tmf) files of the build.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/modem/Outcome.h"
#include "workbench/trace/TraceItems.h"
#include "workbench/trace/TraceRecord.h"

namespace bench {

struct TraceFormat {
  std::string source;              // "Driver.cpp"
  std::string level;               // "error"
  std::string flag;                // "TRACE_GENERAL"
  std::string function;            // "OnDeviceAdd"
  std::string text;                // with its inserts, as it stands after "%0"
  std::vector<TraceItem> items{};  // the arguments, in the order of their bytes
};

/// All messages of a set of files, by GUID and number.
class TraceFormats {
 public:
  /// Reads every .tmf file of a folder; `folder` is UTF-8. Fails with "file:line: what" for the
  /// first line that it cannot read, and for a folder without any.
  static Outcome<TraceFormats> Load(const std::string& folder);

  /// Adds the messages of one file's text; why it cannot be read with "name:line: " before it, or
  /// nothing. Of a message that occurs twice the last one counts.
  std::string Add(std::string_view text, const std::string& name);

  /// Null when no file has the message.
  const TraceFormat* Find(const GUID& message, USHORT number) const;

 private:
  using Key = std::pair<std::string, unsigned>;
  std::map<Key, TraceFormat> formats_;
};

}  // namespace bench
