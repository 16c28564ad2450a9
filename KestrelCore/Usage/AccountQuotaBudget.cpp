#include "KestrelCore/Usage/AccountQuotaBudget.h"

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/OptionalFields.h"
#include "KestrelCore/Usage/WholePercent.h"

namespace kestrel {

std::string AccountQuotaBudget::formattedQuotaRemaining() const {
  return wholePercent(percentageRemaining) + "% quota left";
}

Json encode(const AccountQuotaBudget& budget) {
  Json object = {{"percentageRemaining", budget.percentageRemaining}, {"usedPercent", budget.usedPercent}};
  setIfPresent(object, "windowMinutes", budget.windowMinutes);
  if (budget.resetsAt) object["resetsAt"] = budget.resetsAt->secondsSinceReferenceDate();
  setIfPresent(object, "planType", budget.planType);
  return object;
}

AccountQuotaBudget decodeAccountQuotaBudget(const Json& object) {
  return {.percentageRemaining = requiredDouble(object, "percentageRemaining"),
          .usedPercent = requiredDouble(object, "usedPercent"),
          .windowMinutes = integerIfPresent(object, "windowMinutes"),
          .resetsAt = dateIfPresent(object, "resetsAt"),
          .planType = stringIfPresent(object, "planType")};
}

}  // namespace kestrel
