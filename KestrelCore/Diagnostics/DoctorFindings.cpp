#include "KestrelCore/Diagnostics/DoctorFindings.h"

#include <array>
#include <filesystem>
#include <unistd.h>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/AppCoordinator.h"

namespace kestrel {
namespace {

struct AgentRecords {
  AgentType agent;
  const char* belowHome;
};

constexpr std::array kRecords{AgentRecords{AgentType::claude, ".claude/projects"},
                              AgentRecords{AgentType::codex, ".codex/sessions"},
                              AgentRecords{AgentType::opencode, ".local/share/opencode/opencode.db"}};

void findAgentRecords(const std::filesystem::path& home, DoctorFindings& findings) {
  for (const auto& [agent, belowHome] : kRecords) {
    const auto path = home / belowHome;
    if (::access(path.c_str(), F_OK) != 0) continue;
    auto& names = ::access(path.c_str(), R_OK) == 0 ? findings.readableLogs : findings.unreadableLogs;
    names.emplace_back(displayName(agent));
  }
}

}  // namespace

DoctorFindings doctorFindings(AppCoordinator& coordinator) {
  Platform& platform = coordinator.platform();
  const Directories& directories = coordinator.directories();
  DoctorFindings findings;
  findings.services = platform.powerAssertions->prospects();
  findings.power = coordinator.batteryMonitor().currentSnapshot();
  findings.powerSource = coordinator.batteryMonitor().sourceName();
  findings.thermalState = coordinator.thermalMonitor().currentThermalState();
  findings.thermalSource = coordinator.thermalMonitor().sourceName();
  findings.lidClosed = coordinator.lidMonitor().reading();
  findings.lidSource = coordinator.lidMonitor().sourceName();
  findings.helper = coordinator.helperStatus().get();
  findings.processSource = platform.processes->sourceName();
  findings.hookSocketListens = coordinator.hookReceiver().isRunning();
  findings.hookSocketPath = directories.hookSocket();
  findings.settingsProblem = platform.userDefaults->problem();
  findings.settingsPath = directories.settingsFile();
  findAgentRecords(directories.home, findings);
  return findings;
}

}  // namespace kestrel
