// The AT channel without a framework: a script says whether the port opens and what comes of each
// write. Its source defines AtChannel and ModemPort in the place of at/AtChannel.cpp and
// at/ModemPort.cpp.
#pragma once

#include <string_view>

#include "at/AtChannel.h"

namespace fuzz {

class ChannelScript {
 public:
  virtual bool Opens() = 0;
  /// A line is written; the modem may answer meanwhile. Returns the write's completion status.
  virtual HRESULT Write(std::string_view line) = 0;

 protected:
  ~ChannelScript() = default;
};

/// The script of all channels, which starts with the port closed and no engine use. It must outlive
/// their use.
void UseScript(ChannelScript& script);
void CloseScriptedPort();

}  // namespace fuzz
