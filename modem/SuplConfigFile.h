// Reads operators' SUPL settings from the configuration file installed beside the driver.
#pragma once

#include <windows.h>

#include "modem/SuplRecord.h"

namespace stelvane {

/// Picks the record of `record.m_strImsi`, or the default one, and fills the other fields. The
/// file is read anew at each call; the calling thread must be initialised for COM. A file that
/// cannot be loaded and a record that is not there leave the fields empty and count as success
/// (S_FALSE); both are reported. May throw std::bad_alloc.
HRESULT LoadSuplRecord(SuplRecord& record);

}  // namespace stelvane
