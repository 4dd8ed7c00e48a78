#include "tests/acceptance/Checks.h"

namespace bench::acceptance {

Checks CertificationList() {
  Checks list;
  for (const auto part :
       {PropertyChecks, SettingChecks, FieldChecks, IntervalChecks, StateChecks, RequestChecks}) {
    for (Check& check : part()) list.push_back(std::move(check));
  }
  return list;
}

}  // namespace bench::acceptance
