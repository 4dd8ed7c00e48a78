// What the driver's operations have to return when a call in them fails. An operation is a
// callback, an export, or a procedure that tells of its end in the trace (Procedures.h).
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "workbench/framework/CallRecord.h"

namespace bench {

/// An operation in which something failed, as positions in the record.
struct Struck {
  std::size_t operation = 0;
  std::vector<std::size_t> failed;  // what it called, in order
};

/// The operations that planned failures came about in, and those that failed in turn because a call
/// of theirs ended in such an operation.
std::vector<Struck> StruckOperations(std::span<const CallEntry> calls);

struct Verdict {
  bool prescribed = false;  // whether anything is
  std::string finding{};    // empty: it returned what is prescribed, if anything is
};

/// "malloc in OnReaderCompletion", by the first call that was made to fail; empty: none was.
std::string WhereItFailed(std::span<const CallEntry> calls);

/// Compares the operation's result with what its failed calls have to lead to.
Verdict Judge(std::span<const CallEntry> calls, const Struck& struck);

/// Callbacks that began after the device was pulled out and did not say that a shutdown is in
/// progress.
std::vector<std::string> JudgeAfterRemoval(std::span<const CallEntry> calls);

}  // namespace bench
