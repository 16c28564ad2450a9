#include "KestrelCore/Diagnostics/Doctor.h"

#include <algorithm>
#include <utility>

#include "KestrelCore/Diagnostics/DoctorFindings.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

using State = CapabilityState;

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

bool isThere(const HoldEvidence& evidence) {
  return evidence.state != HoldEvidenceState::unavailable && evidence.state != HoldEvidenceState::refused;
}

Capability loginManager(const DoctorFindings& findings) {
  const auto idle = std::ranges::find(findings.services, HoldKind::idle, &HoldEvidence::kind);
  if (idle == findings.services.end()) {
    return {"login manager", State::unavailable, "no such service on this system", ""};
  }
  if (isThere(*idle)) return {idle->service, State::works, "takes idle locks", ""};
  return {
      idle->service, State::unavailable, idle->detail,
      "start systemd-logind or elogind; without it, and without a desktop's own service, nothing holds the "
      "machine awake"};
}

Capability desktopInhibition(const DoctorFindings& findings) {
  std::vector<std::string> present;
  for (const auto& evidence : findings.services) {
    if (evidence.kind == HoldKind::desktop && isThere(evidence)) present.push_back(evidence.service);
  }
  if (!present.empty()) return {"desktop inhibition", State::works, joined(present), ""};
  return {
      "desktop inhibition", State::unavailable, "no desktop service answers",
      "nothing to do without a desktop; in one, start Kestrel within the session, so that it finds its bus"};
}

Capability battery(const DoctorFindings& findings) {
  if (!findings.powerSource) {
    return {"battery", State::unavailable, "unknown; counts as mains power, so the battery floor rests",
            "install upower"};
  }
  const auto& power = findings.power;
  const std::string level =
      power.batteryPercent ? std::to_string(*power.batteryPercent) + " %" : "no battery";
  return {"battery", State::works,
          *findings.powerSource + ": " + level + (power.isOnAC ? ", on mains" : ", on battery"), ""};
}

Capability heat(const DoctorFindings& findings) {
  if (findings.thermalSource) {
    return {"heat", State::works,
            *findings.thermalSource + ": " + std::string(rawValue(findings.thermalState)), ""};
  }
  return {"heat", State::unavailable, "unknown; counts as nominal, so the thermal cutoff rests",
          "nothing to do on a virtual machine; elsewhere load the drivers of the machine's sensors"};
}

Capability lid(const DoctorFindings& findings) {
  if (findings.lidSource && findings.lidClosed) {
    return {"lid", State::works, *findings.lidSource + (*findings.lidClosed ? ": closed" : ": open"), ""};
  }
  return {"lid", State::unavailable, "unknown; counts as open", "nothing to do on a machine without a lid"};
}

Capability lidClosedHold(const DoctorFindings& findings) {
  const auto& helper = findings.helper;
  if (!helper || !helper->isHelperInstalled) {
    return {"lid-closed hold", State::unavailable,
            "no helper answers: closing the lid lets the machine sleep",
            "on a laptop: kestrelctl helper install, then start Kestrel again"};
  }
  if (helper->isDeepHoldActive && !helper->currentSystemSleepDisabled) {
    return {"lid-closed hold", State::limited, "the helper cannot switch sleep off",
            "its own log tells why; a user's helper needs a local session, root's does not"};
  }
  return {"lid-closed hold", State::works,
          helper->isDeepHoldActive ? "held by the helper" : "the helper answers", ""};
}

Capability processList(const DoctorFindings& findings) {
  if (findings.processSource) return {"process list", State::works, *findings.processSource, ""};
  return {"process list", State::unavailable, "agents without hooks are not seen", "make /proc readable"};
}

Capability sockets(const DoctorFindings& findings) {
  if (findings.hookSocketListens) return {"sockets", State::works, findings.hookSocketPath, ""};
  return {"sockets", State::limited, "the hook socket could not be opened: " + findings.hookSocketPath,
          "the log tells why; mend it and start Kestrel again"};
}

Capability settingsFile(const DoctorFindings& findings) {
  if (!findings.settingsProblem) return {"settings file", State::works, findings.settingsPath, ""};
  return {"settings file", State::limited, *findings.settingsProblem + "; the defaults are in use",
          "mend or remove " + findings.settingsPath};
}

Capability agentLogs(const DoctorFindings& findings) {
  if (!findings.unreadableLogs.empty()) {
    return {"agents' logs", State::limited, "not readable: " + joined(findings.unreadableLogs),
            "give yourself permission to read them"};
  }
  if (!findings.readableLogs.empty())
    return {"agents' logs", State::works, joined(findings.readableLogs), ""};
  return {"agents' logs", State::unavailable, "no agent has left records yet",
          "nothing to do: start an agent once"};
}

}  // namespace

std::vector<Capability> examine(const DoctorFindings& findings) {
  return {loginManager(findings), desktopInhibition(findings), battery(findings),     heat(findings),
          lid(findings),          lidClosedHold(findings),     processList(findings), sockets(findings),
          settingsFile(findings), agentLogs(findings)};
}

Json encode(const std::vector<Capability>& report) {
  Json list = Json::array();
  for (const auto& capability : report) {
    list.push_back({{"name", capability.name},
                    {"state", rawValue(capability.state)},
                    {"detail", capability.detail},
                    {"advice", capability.advice}});
  }
  return list;
}

}  // namespace kestrel
