// What every simulated framework object needs of its run.
#pragma once

#include "workbench/clock/Clock.h"
#include "workbench/framework/CallRecord.h"
#include "workbench/framework/Ledger.h"

namespace bench {

struct World {
  Clock& clock;
  Ledger& ledger;
  CallRecord& calls;
};

}  // namespace bench
