// A data report as a driver posts it, made of all fields.
#pragma once

#include "workbench/sensorapi/Report.h"

namespace bench {

KeyValues SampleReport();
KeyValues SampleReportWith(const PROPERTYKEY& key, const Variant& value);
KeyValues SampleReportWithout(const PROPERTYKEY& key);

/// Sets the value of a key that may be there already.
void Replace(KeyValues* values, const PROPERTYKEY& key, const Variant& value);

}  // namespace bench
