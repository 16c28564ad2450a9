#include "KestrelCore/Usage/BudgetMetric.h"

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/AccountQuotaBudget.h"
#include "KestrelCore/Usage/ContextBudget.h"
#include "KestrelCore/Usage/OptionalFields.h"

namespace kestrel {
namespace {

template <typename T>
T decodeValue(const Json& object);

template <>
ContextBudget decodeValue<ContextBudget>(const Json& object) {
  return decodeContextBudget(object);
}

template <>
AccountQuotaBudget decodeValue<AccountQuotaBudget>(const Json& object) {
  return decodeAccountQuotaBudget(object);
}

}  // namespace

template <typename T>
Json encode(const BudgetMetric<T>& metric) {
  if (const auto* known = metric.asKnown()) {
    return {{"type", "known"},
            {"value", encode(known->value)},
            {"confidence", known->confidence},
            {"source", known->source}};
  }
  return {{"type", "unavailable"}, {"reason", metric.unavailableReason().value_or("")}};
}

template <typename T>
BudgetMetric<T> decodeBudgetMetric(const Json& object) {
  const std::string type = requiredString(object, "type");
  if (type == "unavailable") return BudgetMetric<T>::unavailable(requiredString(object, "reason"));
  if (type != "known") throw DecodingError("A metric must be known or unavailable");
  return BudgetMetric<T>::known(decodeValue<T>(requiredMember(object, "value")),
                                requiredDouble(object, "confidence"), requiredString(object, "source"));
}

template Json encode(const BudgetMetric<ContextBudget>& metric);
template Json encode(const BudgetMetric<AccountQuotaBudget>& metric);
template BudgetMetric<ContextBudget> decodeBudgetMetric(const Json& object);
template BudgetMetric<AccountQuotaBudget> decodeBudgetMetric(const Json& object);

}  // namespace kestrel
