#include "workbench/rig/Verifier.h"

#include <algorithm>
#include <utility>

#include "workbench/framework/ContinuousReader.h"
#include "workbench/imports/DriverModule.h"

namespace bench {

namespace {

std::string_view RuleOf(Resource kind) {
  switch (kind) {
    case Resource::kRunningThread:
      return rule::kThreadLeft;
    case Resource::kCriticalSection:
      return rule::kSectionLeft;
    case Resource::kComInitialization:
      return rule::kComLeft;
    case Resource::kTaskMemory:
    case Resource::kHeapBlock:
      return rule::kMemoryLeft;
    default:
      return rule::kHandleLeft;
  }
}

std::string Line(std::string_view rule, const std::string& what) {
  return std::string(rule) + ": " + what;
}

bool IsPrescribed(std::string_view call, std::span<const PrescribedCall> prescribed) {
  return std::ranges::any_of(prescribed, [&](const PrescribedCall& entry) {
    return entry.call == call || (entry.call.ends_with(':') && call.starts_with(entry.call));
  });
}

}  // namespace

void WatchCalls(Ledger& ledger, Redirector& redirector,
                std::span<const PrescribedCall> prescribed) {
  ledger.SetCallCheck([&ledger, &redirector, prescribed](std::string_view object,
                                                         std::string_view call) {
    const std::string words = std::string(object) + ": " + std::string(call);
    if (DriverModule::InDllMain()) {
      ledger.Report(rule::kCallFromDllMain, words);
      return true;
    }
    const std::string held = redirector.Locks().HeldHere();
    const bool allowed = IsPrescribed(call, prescribed) && !ContinuousReader::InsideAnyCallback();
    if (!held.empty() && !allowed) {
      ledger.Report(rule::kLockHeld, words + " under " + held);
    }
    return false;
  });
}

std::vector<std::string> FindingsOf(const Ledger& ledger, Redirector& redirector,
                                    HRESULT canUnload) {
  std::vector<std::string> findings = ledger.Violations();
  for (std::string& line : redirector.Broken().Lines()) findings.push_back(std::move(line));
  for (const Leak& leak : redirector.Books().Leaks()) {
    findings.push_back(Line(RuleOf(leak.kind), Describe(leak)));
  }
  for (const std::string& misuse : redirector.Books().Misuses()) {
    findings.push_back(Line(rule::kNotTaken, misuse));
  }
  if (canUnload != S_OK) {
    findings.push_back(Line(rule::kModuleInUse, "DllCanUnloadNow does not answer S_OK"));
  }
  return findings;
}

}  // namespace bench
