#include "KestrelCore/Control/ControlService.h"

#include <array>
#include <utility>

#include "KestrelCore/Control/Duration.h"
#include "KestrelCore/Control/SettingsCatalog.h"
#include "KestrelCore/Control/StatusReport.h"
#include "KestrelCore/Control/UsageReport.h"
#include "KestrelCore/Diagnostics/Doctor.h"
#include "KestrelCore/Diagnostics/DoctorFindings.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {

ControlService::ControlService(AppCoordinator& coordinator, std::function<bool()> show)
    : coordinator_(coordinator), show_(std::move(show)) {}

ControlReply ControlService::perform(const ControlRequest& request) {
  struct Command {
    std::string_view name;
    std::size_t minimumArguments;
    std::size_t maximumArguments;
    ControlReply (ControlService::*action)(const Arguments&);
  };
  static constexpr std::array<Command, 13> kCommands{{
      {"status", 0, 0, &ControlService::status},
      {"sessions", 0, 0, &ControlService::sessions},
      {"pause", 1, 1, &ControlService::pause},
      {"resume", 0, 0, &ControlService::resume},
      {"hold", 1, 1, &ControlService::hold},
      {"enable", 0, 0, &ControlService::enable},
      {"disable", 0, 0, &ControlService::disable},
      {"settings", 1, 3, &ControlService::settings},
      {"usage", 0, 0, &ControlService::usage},
      {"doctor", 0, 0, &ControlService::doctor},
      {"diagnostics", 0, 0, &ControlService::diagnostics},
      {"why", 0, 0, &ControlService::why},
      {"show", 0, 0, &ControlService::show},
  }};
  for (const Command& command : kCommands) {
    if (command.name != request.command) continue;
    const std::size_t count = request.arguments.size();
    if (count < command.minimumArguments || count > command.maximumArguments) {
      return ControlReply::failure("Wrong number of arguments for '" + request.command + "'");
    }
    return (this->*command.action)(request.arguments);
  }
  return ControlReply::failure("Unknown command '" + request.command + "'");
}

ControlReply ControlService::status(const Arguments&) {
  return ControlReply::success(statusReport(coordinator_));
}

ControlReply ControlService::sessions(const Arguments&) {
  return ControlReply::success({{"sessions", sessionsReport(coordinator_)}});
}

ControlReply ControlService::usage(const Arguments&) {
  return ControlReply::success(usageReport(coordinator_.usage(), coordinator_.clock().now()));
}

ControlReply ControlService::diagnostics(const Arguments&) {
  return ControlReply::success(parseJson(coordinator_.exportDiagnosticsJSON()));
}

ControlReply ControlService::why(const Arguments&) {
  return ControlReply::success(
      {{"statusDescription", coordinator_.currentDecision().get().statusDescription()},
       {"hold", encode(coordinator_.hold().get())},
       {"systemAssertionsSummary", coordinator_.diagnosticsReport().systemAssertionsSummary}});
}

ControlReply ControlService::pause(const Arguments& arguments) {
  const auto seconds = parseDuration(arguments[0]);
  if (!seconds) return ControlReply::failure("'" + arguments[0] + "' is no duration; use 90s, 30m or 1h30m");
  return changed(coordinator_.settings().pause(*seconds));
}

ControlReply ControlService::resume(const Arguments&) {
  return changed(coordinator_.settings().resume());
}

ControlReply ControlService::hold(const Arguments& arguments) {
  const std::string& word = arguments[0];
  if (word != "on" && word != "off") return ControlReply::failure("'hold' takes on or off");
  return changed(coordinator_.settings().setManualHoldEnabled(word == "on"));
}

ControlReply ControlService::enable(const Arguments&) {
  return changed(coordinator_.settings().setMasterEnabled(true));
}

ControlReply ControlService::disable(const Arguments&) {
  return changed(coordinator_.settings().setMasterEnabled(false));
}

ControlReply ControlService::settings(const Arguments& arguments) {
  SettingsStore& settings = coordinator_.settings();
  const std::string& verb = arguments[0];
  if (verb == "list" && arguments.size() == 1) return ControlReply::success(settingsReport(settings));
  if (verb == "get" && arguments.size() == 2) {
    const Json report = settingsReport(settings);
    const auto entry = report.find(arguments[1]);
    if (entry == report.end()) return ControlReply::failure("There is no setting '" + arguments[1] + "'");
    return ControlReply::success({{arguments[1], *entry}});
  }
  if (verb == "set" && arguments.size() == 3) {
    if (const auto problem = setSetting(settings, arguments[1], arguments[2]))
      return ControlReply::failure(*problem);
    // The system's list of login items follows the choice; a failure is in the log, and the choice stays.
    if (arguments[1] == "launchAtLogin")
      (void)coordinator_.launchAtLogin().setEnabled(settings.launchAtLogin());
    return changed(true);
  }
  return ControlReply::failure("'settings' takes list, get KEY or set KEY VALUE");
}

ControlReply ControlService::doctor(const Arguments&) {
  return ControlReply::success({{"capabilities", encode(examine(doctorFindings(coordinator_)))}});
}

ControlReply ControlService::show(const Arguments&) {
  return ControlReply::success({{"shown", show_()}});
}

ControlReply ControlService::changed(bool kept) {
  coordinator_.evaluate();
  if (!kept) return ControlReply::failure("The setting could not be saved; the log tells why");
  return ControlReply::success(
      {{"statusDescription", coordinator_.currentDecision().get().statusDescription()}});
}

}  // namespace kestrel
