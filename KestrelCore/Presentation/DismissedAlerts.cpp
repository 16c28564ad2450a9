#include "KestrelCore/Presentation/DismissedAlerts.h"

namespace kestrel {

void DismissedAlerts::update(const std::map<AgentType, LowBudgetAlert>& alerts) {
  std::erase_if(keys_, [&](const AlertKey& key) {
    const auto alert = alerts.find(key.agent);
    return alert == alerts.end() || alert->second.metricType != key.metric ||
           alert->second.level != key.level;
  });
}

}  // namespace kestrel
