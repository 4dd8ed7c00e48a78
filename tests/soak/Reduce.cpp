#include "tests/soak/Reduce.h"

#include <algorithm>
#include <utility>

namespace soak {

namespace {

Plan Without(const Plan& plan, std::size_t from, std::size_t count) {
  Plan shorter = plan;
  const auto begin = shorter.decisions.begin() + static_cast<std::ptrdiff_t>(from);
  shorter.decisions.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
  return shorter;
}

}  // namespace

Plan Reduce(Plan plan, const Fails& fails, int runs) {
  std::size_t chunk = std::max<std::size_t>(plan.decisions.size() / 2, 1);
  while (runs > 0) {
    bool shortened = false;
    for (std::size_t from = 0; from < plan.decisions.size() && runs > 0; --runs) {
      const std::size_t count = std::min(chunk, plan.decisions.size() - from);
      Plan shorter = Without(plan, from, count);
      if (fails(shorter)) {
        plan = std::move(shorter);
        shortened = true;
      } else {
        from += count;
      }
    }
    if (chunk == 1 && !shortened) break;
    if (!shortened) chunk = std::max<std::size_t>(chunk / 2, 1);
  }
  return plan;
}

}  // namespace soak
