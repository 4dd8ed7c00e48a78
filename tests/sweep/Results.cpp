#include "tests/sweep/Results.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <set>
#include <string_view>

#include "base/Result.h"
#include "tests/sweep/ResultTable.h"

namespace bench {

namespace {

using Calls = std::span<const CallEntry>;

constexpr std::string_view kRemoved = "OnSurpriseRemoval";
constexpr std::string_view kClosedByRemoval[] = {"OnPrepareHardware", "OnD0Entry",
                                                 "OnSelfManagedIoInit", "OnSelfManagedIoRestart",
                                                 "OnSelfManagedIoSuspend"};
// Their results are of the workbench's making.
constexpr std::string_view kReturnNothing[] = {
    "OnDeinitialize", "OnSelfManagedIoFlush", "OnSelfManagedIoCleanup", kRemoved,
    "OnCleanupFile",  "OnReaderCompletion",   "OnReaderFailure",        "OnCleanup"};

bool IsOperation(const CallEntry& entry) {
  return entry.object == kDriverCallee;
}

/// "OnD0Entry" of "IPnpCallback::OnD0Entry".
std::string_view OperationName(const CallEntry& entry) {
  const std::string_view name = entry.call;
  const std::size_t colon = name.find("::");
  return name.substr(colon == std::string_view::npos ? 0 : colon + 2);
}

bool Contains(std::span<const std::string_view> names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

bool Matches(std::string_view pattern, std::string_view name) {
  if (!pattern.ends_with('*')) return name == pattern;
  return name.starts_with(pattern.substr(0, pattern.size() - 1));
}

/// What the same operation called before this; empty: nothing.
std::string_view CallBefore(Calls calls, std::size_t index) {
  for (std::size_t i = index; i-- > 0;) {
    if (calls[i].within == calls[index].within) return calls[i].call;
  }
  return {};
}

const PrescribedResult* Find(Calls calls, const Struck& struck, std::size_t failed) {
  const std::string_view operation = OperationName(calls[struck.operation]);
  const std::string_view before = CallBefore(calls, failed);
  const auto rows = PrescribedResults();
  const auto row = std::ranges::find_if(rows, [&](const PrescribedResult& each) {
    return Matches(each.operation, operation) && Matches(each.call, calls[failed].call) &&
           Matches(each.after, before);
  });
  return row == rows.end() ? nullptr : &*row;
}

bool IsAfterRemoval(Calls calls, std::size_t index) {
  return std::ranges::any_of(calls, [&](const CallEntry& entry) {
    return OperationName(entry) == kRemoved && entry.ended != 0 && entry.ended <= index;
  });
}

std::string Code(HRESULT result) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lx", static_cast<unsigned long>(result));
  return text;
}

std::string Finding(const CallEntry& operation, const std::string& why, HRESULT prescribed) {
  return "wrong result: " + operation.call + " returned " + Code(operation.result) +
         " instead of " + Code(prescribed) + why;
}

Verdict Compare(Calls calls, const Struck& struck, std::size_t failed,
                const PrescribedResult& row) {
  const CallEntry& operation = calls[struck.operation];
  const HRESULT own = calls[failed].result;
  const HRESULT first = row.result == kSameCode ? own : row.result;
  const HRESULT second = row.other == kSameCode ? own : row.other;
  Verdict verdict{.prescribed = true};
  if (operation.result != first && operation.result != second) {
    verdict.finding = Finding(operation, " for " + calls[failed].call, first);
  }
  return verdict;
}

}  // namespace

std::vector<Struck> StruckOperations(Calls calls) {
  std::set<std::size_t> operations;
  std::set<std::size_t> failures;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (!calls[i].planned) continue;
    failures.insert(i);
    for (std::size_t inner = i; calls[inner].within;) {
      const std::size_t outer = *calls[inner].within;
      if (IsOperation(calls[outer])) operations.insert(outer);
      if (SUCCEEDED(calls[outer].result)) break;
      failures.insert(outer);
      inner = outer;
    }
  }
  std::vector<Struck> all;
  for (const std::size_t operation : operations) {
    Struck& struck = all.emplace_back(Struck{.operation = operation, .failed = {}});
    for (std::size_t i = operation + 1; i < calls.size(); ++i) {
      if (calls[i].within != operation) continue;
      // Others may fail for reasons of their own, such as a command when the stop comes meanwhile.
      if (FAILED(calls[i].result) || failures.contains(i)) struck.failed.push_back(i);
    }
  }
  return all;
}

std::string WhereItFailed(Calls calls) {
  const auto failed = std::ranges::find_if(calls, &CallEntry::planned);
  if (failed == calls.end()) return {};
  if (!failed->within) return failed->call + " in no operation";
  const std::string_view operation = OperationName(calls[*failed->within]);
  return failed->call + " in " + std::string(operation.substr(0, operation.find(' ')));
}

Verdict Judge(Calls calls, const Struck& struck) {
  const CallEntry& operation = calls[struck.operation];
  if (Contains(kReturnNothing, OperationName(operation))) return {};
  const bool closed = IsAfterRemoval(calls, struck.operation) &&
                      Contains(kClosedByRemoval, OperationName(operation));
  const HRESULT untroubled = closed ? stelvane::kShutdownInProgress : S_OK;
  HRESULT other = untroubled;
  std::vector<std::string_view> borne;
  for (const std::size_t failed : struck.failed) {
    const PrescribedResult* const row = Find(calls, struck, failed);
    if (row == nullptr) return {};
    const auto retried = std::ranges::count(borne, calls[failed].call);
    if (row->result != kNoMatter && retried >= row->retries) {
      return Compare(calls, struck, failed, *row);
    }
    borne.push_back(calls[failed].call);
    if (row->result == kNoMatter && row->other != kNoMatter) other = row->other;
  }
  Verdict verdict{.prescribed = true};
  if (operation.result != untroubled && operation.result != other) {
    verdict.finding = Finding(operation, ", although nothing in it matters", untroubled);
  }
  return verdict;
}

std::vector<std::string> JudgeAfterRemoval(Calls calls) {
  std::vector<std::string> findings;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (!Contains(kClosedByRemoval, OperationName(calls[i])) || !IsAfterRemoval(calls, i)) continue;
    if (calls[i].result == stelvane::kShutdownInProgress) continue;
    findings.push_back(Finding(calls[i], " after the removal", stelvane::kShutdownInProgress));
  }
  return findings;
}

}  // namespace bench
