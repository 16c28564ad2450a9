#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Presentation/AgentFamilyPresentation.h"

namespace kestrel {

/// The status icon's tooltip: the decision, then a line for each family. Plain text, lines ended by "\n".
std::string statusTooltip(const WakeDecision& decision, std::int64_t workingCount,
                          const std::vector<AgentFamilyPresentation>& families);

}  // namespace kestrel
