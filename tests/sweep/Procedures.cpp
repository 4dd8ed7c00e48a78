#include "tests/sweep/Procedures.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace bench {

namespace {

constexpr GUID kCommandEngine = {
    0xb03fb04c, 0xc7b4, 0x424f, {0xb1, 0x46, 0xc5, 0xa6, 0x80, 0xe0, 0x57, 0x2d}};
constexpr GUID kLocationSession = {
    0xd958871d, 0xe3de, 0x48a9, {0xa0, 0x7a, 0x8a, 0x7e, 0x4e, 0x79, 0xba, 0xd8}};
constexpr GUID kSuplProvisioning = {
    0x0e2faa17, 0x6fd5, 0x4877, {0x94, 0x06, 0xdf, 0x37, 0x3b, 0xc7, 0xf3, 0xfa}};
constexpr GUID kSensorOutput = {
    0x465c3423, 0x121f, 0x427d, {0x87, 0xda, 0xca, 0x3e, 0x89, 0xbc, 0xfe, 0x44}};
constexpr GUID kEngineBringUp = {
    0x6c2d24c6, 0x57c4, 0x4632, {0xa2, 0x4d, 0x92, 0xd9, 0x39, 0x05, 0xe9, 0x4a}};

enum class Tells { kBegin, kBeginOf, kSuccess, kFailure, kResult };

struct Message {
  GUID source;
  USHORT number;
  Tells tells;
  std::string_view procedure;
  std::size_t resultAt = 0;  // bytes of arguments before it
};

// By the numbers in the catalogues of the sources.
constexpr Message kMessages[] = {
    {kCommandEngine, 10, Tells::kBeginOf, "SendCommand"},
    {kCommandEngine, 11, Tells::kResult, "SendCommand"},
    {kLocationSession, 16, Tells::kBegin, "StartLocationRequest"},
    {kLocationSession, 10, Tells::kResult, "StartLocationRequest", sizeof(ULONG)},
    {kLocationSession, 11, Tells::kSuccess, "StartLocationRequest"},
    {kSuplProvisioning, 14, Tells::kBegin, "LoadSuplRecord"},
    {kSuplProvisioning, 12, Tells::kResult, "LoadSuplRecord"},
    {kSuplProvisioning, 15, Tells::kResult, "LoadSuplRecord"},
    {kSensorOutput, 17, Tells::kBegin, "SendDataReport"},
    {kSensorOutput, 12, Tells::kResult, "SendDataReport"},
    {kSensorOutput, 13, Tells::kResult, "SendDataReport"},
    {kSensorOutput, 14, Tells::kSuccess, "SendDataReport"},
    {kSensorOutput, 15, Tells::kFailure, "SendDataReport"},
    {kEngineBringUp, 10, Tells::kBegin, "InitializeEngine"},
    {kEngineBringUp, 11, Tells::kResult, "InitializeEngine"},
    {kEngineBringUp, 12, Tells::kSuccess, "InitializeEngine"},
    {kEngineBringUp, 13, Tells::kResult, "InitializeEngine"},
    {kEngineBringUp, 16, Tells::kResult, "InitializeEngine"},
};

constexpr std::string_view kTouched[] = {"malloc", "calloc", "realloc", "WideCharToMultiByte",
                                         "TraceMessage"};

HRESULT ResultIn(const TraceRecord& message, std::size_t at) {
  HRESULT result = E_UNEXPECTED;
  if (message.arguments.size() >= at + sizeof result) {
    std::memcpy(&result, message.arguments.data() + at, sizeof result);
  }
  return result;
}

}  // namespace

void NoteProcedure(CallRecord& calls, const TraceRecord& message) {
  const auto known = std::ranges::find_if(kMessages, [&](const Message& each) {
    return each.number == message.number && IsEqualGUID(each.source, message.message);
  });
  if (known == std::end(kMessages)) return;
  std::string name(known->procedure);
  switch (known->tells) {
    case Tells::kBeginOf:
      name += " " + std::string(message.arguments.begin(), message.arguments.end());
      name.resize(name.find_last_not_of('\0') + 1);
      [[fallthrough]];
    case Tells::kBegin:
      calls.Begin(kDriverCallee, name);
      break;
    case Tells::kSuccess:
      calls.EndInnermost(S_OK);
      break;
    case Tells::kFailure:
      calls.EndInnermost(E_FAIL);
      break;
    case Tells::kResult:
      calls.EndInnermost(ResultIn(message, known->resultAt));
  }
}

bool IsUntouchedByTracing(std::string_view import) {
  return std::ranges::find(kTouched, import) == std::end(kTouched);
}

}  // namespace bench
