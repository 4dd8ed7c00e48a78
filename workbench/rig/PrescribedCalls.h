// The calls into the framework that the driver is meant to make while it holds a lock of its own.
#pragma once

#include "workbench/rig/Verifier.h"

namespace bench {

namespace prescribed {

// The modem answers one command at a time, so the lock is held from the writing of a command to its
// answer; bring-up, session start and session stop keep theirs over all of their commands.
inline constexpr std::string_view kCommand = "a command's write, under the command lock";
// A command that stays without an answer opens the port anew before it is written again.
inline constexpr std::string_view kReopening = "the port's opening anew, under the command lock";
// The same procedures take their hold on the working state inside of their locks.
inline constexpr std::string_view kEngineUse = "a procedure's first or last engine use";
// The context's lock lets the core stop once, whoever comes first; the stop closes the port.
inline constexpr std::string_view kClose = "the port's end, under the context's lock";

// Six lead times are stored as one, with their errors.
inline constexpr std::string_view kLeadTimes = "a refused lead time, under the lead-time lock";

}  // namespace prescribed

inline constexpr PrescribedCall kPrescribedUnderLocks[] = {
    {"IUnknown::QueryInterface(IWDFIoTarget)", prescribed::kCommand},
    {"IWDFDevice::GetDriver", prescribed::kCommand},
    {"IWDFDevice::CreateRequest", prescribed::kCommand},
    {"IWDFDriver::CreateWdfMemory", prescribed::kCommand},
    {"IWDFMemory::CopyFromBuffer", prescribed::kCommand},
    {"IWDFIoTarget::GetTargetFile", prescribed::kCommand},
    {"IWDFIoTarget::FormatRequestForWrite", prescribed::kCommand},
    {"IWDFIoRequest::Send", prescribed::kCommand},
    {"IWDFIoRequest::GetCompletionParams", prescribed::kCommand},
    {"IWDFRequestCompletionParams::GetCompletionStatus", prescribed::kCommand},
    {"IUnknown::QueryInterface(IWDFUsbTargetFactory)", prescribed::kReopening},
    {"IUnknown::QueryInterface(IWDFUsbTargetPipe2)", prescribed::kReopening},
    {"IUnknown::QueryInterface(IWDFIoTargetStateManagement)", prescribed::kReopening},
    {"IWDFUsbTargetFactory::CreateUsbTargetDevice", prescribed::kReopening},
    {"IWDFUsbTargetDevice::", prescribed::kReopening},
    {"IWDFUsbInterface::", prescribed::kReopening},
    {"IWDFUsbTargetPipe::", prescribed::kReopening},
    {"IWDFUsbTargetPipe2::ConfigureContinuousReader", prescribed::kReopening},
    {"IWDFIoTargetStateManagement::Start", prescribed::kReopening},
    {"IPortableDeviceValues::SetErrorValue", prescribed::kLeadTimes},
    {"IWDFDevice2::StopIdle", prescribed::kEngineUse},
    {"IWDFDevice2::ResumeIdle", prescribed::kEngineUse},
    {"IWDFObject::DeleteWdfObject", prescribed::kClose},  // of a command's request, too
};

}  // namespace bench
