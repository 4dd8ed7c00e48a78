// The names of the rules that a driver is held to. docs/framework-rules.md says what each means and
// which deliberately wrong driver proves it.
#pragma once

#include <string_view>

/// A violation reads "<rule>: <what happened>".
namespace bench::rule {

// References and the life of objects.
inline constexpr std::string_view kLeak = "leaked reference";
inline constexpr std::string_view kOverRelease = "released too often";
inline constexpr std::string_view kModuleInUse = "module still in use";
inline constexpr std::string_view kDeletedObject = "use of a deleted object";
inline constexpr std::string_view kForeignObject = "not a framework object";
inline constexpr std::string_view kFrameworkOwned = "delete of an object of the framework";

// Calls.
inline constexpr std::string_view kUnexpectedCall = "unexpected call";
inline constexpr std::string_view kBadArgument = "bad argument";
inline constexpr std::string_view kBadFormat = "bad request format";
inline constexpr std::string_view kCallFromDllMain = "framework call from DllMain";

// Requests and the queue.
inline constexpr std::string_view kCompletedTwice = "request completed twice";
inline constexpr std::string_view kTouchedAfterCompletion = "request touched after completion";
inline constexpr std::string_view kNeverCompleted = "request never completed";
inline constexpr std::string_view kSlowAnswer = "request not answered in time";
inline constexpr std::string_view kPowerManagedQueue = "power-managed queue";

// QueryInterface of callback objects.
inline constexpr std::string_view kQueryInterface = "query interface";
inline constexpr std::string_view kNotReflexive = "query interface is not reflexive";
inline constexpr std::string_view kNotSymmetric = "query interface is not symmetric";
inline constexpr std::string_view kNotTransitive = "query interface is not transitive";
inline constexpr std::string_view kIdentity = "query interface changes the identity";

// The continuous reader and power.
inline constexpr std::string_view kReaderReentered = "reader controlled from its own callback";
inline constexpr std::string_view kReaderOverlap = "reader start and stop overlap";
inline constexpr std::string_view kPendingReads = "not one pending read";
inline constexpr std::string_view kIdleBalance = "idle balance";
inline constexpr std::string_view kFailedWayDown = "failure on the way down";

// Exceptions.
inline constexpr std::string_view kEscapedException = "exception left a callback";
inline constexpr std::string_view kExceptionFromExport = "exception left an export";
inline constexpr std::string_view kExceptionFromThread = "exception left a thread";

// What the module left behind.
inline constexpr std::string_view kThreadLeft = "thread left running";
inline constexpr std::string_view kHandleLeft = "handle left open";
inline constexpr std::string_view kMemoryLeft = "memory not freed";
inline constexpr std::string_view kSectionLeft = "critical section not deleted";
inline constexpr std::string_view kComLeft = "COM left initialised";
inline constexpr std::string_view kNotTaken = "given back without being taken";

// Locks.
inline constexpr std::string_view kLockOrder = "lock order";
inline constexpr std::string_view kLockHeld = "lock held in a framework call";

inline constexpr std::string_view kAll[] = {
    kLeak,
    kOverRelease,
    kModuleInUse,
    kDeletedObject,
    kForeignObject,
    kFrameworkOwned,
    kUnexpectedCall,
    kBadArgument,
    kBadFormat,
    kCallFromDllMain,
    kCompletedTwice,
    kTouchedAfterCompletion,
    kNeverCompleted,
    kSlowAnswer,
    kPowerManagedQueue,
    kQueryInterface,
    kNotReflexive,
    kNotSymmetric,
    kNotTransitive,
    kIdentity,
    kReaderReentered,
    kReaderOverlap,
    kPendingReads,
    kIdleBalance,
    kFailedWayDown,
    kEscapedException,
    kExceptionFromExport,
    kExceptionFromThread,
    kThreadLeft,
    kHandleLeft,
    kMemoryLeft,
    kSectionLeft,
    kComLeft,
    kNotTaken,
    kLockOrder,
    kLockHeld,
};

}  // namespace bench::rule
