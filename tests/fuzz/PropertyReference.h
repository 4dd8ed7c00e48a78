// The sensor's clients and properties as they are described.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "modem/ClientTable.h"
#include "tests/fuzz/LeadTimeReference.h"
#include "tests/fuzz/PropertyBag.h"

namespace reference {

constexpr GUID kDriverSet = {
    0xaf4d65c7, 0xc7a2, 0x4e3b, {0xb4, 0x49, 0xbb, 0xb1, 0x12, 0x3b, 0x65, 0xbf}};
constexpr GUID kAssistanceSet = {
    0xe1e962f4, 0x6e65, 0x45f7, {0x9c, 0x36, 0xd4, 0x87, 0xb7, 0xb1, 0xbd, 0x34}};

class Sensor {
 public:
  void Connect(stelvane::ClientId client);
  void Disconnect(stelvane::ClientId client);
  void SetSubscribed(stelvane::ClientId client, bool subscribed);

  struct Written {
    HRESULT result;
    fuzz::BagAnswers errors;  // in the order in which keys were refused first
  };
  /// `takenErrors` error values are taken before giving one fails.
  Written Write(stelvane::ClientId client, const fuzz::BagContent& values, unsigned takenErrors);

  /// What is answered for a key, shown as the bag shows it; empty for an all-zero key.
  std::string Answer(const PROPERTYKEY& key) const;

  const std::vector<std::uint32_t>& Events() const { return events_; }
  const std::vector<stelvane::ClientEntry>& Clients() const { return clients_; }

 private:
  struct Request {
    stelvane::ClientId client;
    const PROPERTYKEY& key;
    const fuzz::BagValue& value;
    unsigned& takenErrors;
    Written& written;
  };
  HRESULT WriteOne(const Request& request);
  HRESULT WriteInterval(const Request& request);
  HRESULT WriteLeadTimes(const Request& request);
  static HRESULT Refuse(const Request& request, HRESULT error, unsigned times = 1);
  stelvane::ClientEntry* Find(stelvane::ClientId client);
  std::uint32_t Interval() const;

  std::vector<stelvane::ClientEntry> clients_;
  std::vector<std::uint32_t> events_;
  LeadTimeTable leadTimes_ = kDefaultLeadTimes;
  std::uint32_t requestField1_ = 1;
  std::uint32_t requestField2_ = 1;
};

}  // namespace reference
