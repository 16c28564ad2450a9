#include "KestrelControl/Control.h"

#include <cstdio>
#include <optional>
#include <string>

#include "KestrelControl/AgentsCommand.h"
#include "KestrelControl/HelperCommand.h"
#include "KestrelControl/KestrelSockets.h"
#include "KestrelControl/Output.h"
#include "KestrelControl/RunCommand.h"
#include "KestrelControl/StatusText.h"
#include "KestrelControl/UsageCommand.h"
#include "KestrelControl/WatchCommand.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

int notRunning() {
  std::fputs("Kestrel is not running.\n", stderr);
  return kControlNotRunning;
}

std::string indented(const Json& result) {
  return result.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string resultText(const ControlRequest& request, const Json& result) {
  const Date now = SystemClock().now();
  if (request.command == "status") return statusText(result, now);
  if (request.command == "sessions") return sessionsText(result, now);
  if (request.command == "doctor") return doctorText(result);
  if (request.command == "why") return whyText(result);
  if (request.command == "diagnostics") return indented(result);
  const bool lists = request.command == "settings" && request.arguments.front() == "list";
  return lists ? settingsText(result) : changeText(result);
}

/// Null when Kestrel does not run, or has no answer.
Json answerOfKestrel(const Directories& directories, const std::string& command) {
  const SocketExchange exchanged = askKestrel(directories, {command, {}});
  if (exchanged.outcome != SocketExchange::Outcome::replied) return nullptr;
  try {
    const ControlReply reply = decodeControlReply(exchanged.reply);
    return reply.ok() ? *reply.result : Json(nullptr);
  } catch (const DecodingError&) {
    return nullptr;
  }
}

/// What Kestrel answers, as it is printed. Absent when there is no answer, which has been said; `failure` is
/// then the exit status.
std::optional<std::string> answerText(const ControlOptions& options, const Directories& directories,
                                      int& failure) {
  const auto fail = [&](int status) {
    failure = status;
    return std::nullopt;
  };
  const SocketExchange exchanged = askKestrel(directories, options.request);
  if (exchanged.outcome == SocketExchange::Outcome::nobodyListens) return fail(notRunning());
  if (exchanged.outcome == SocketExchange::Outcome::failed)
    return fail(complain("Kestrel does not answer at " + directories.controlSocket().string()));
  try {
    const ControlReply reply = decodeControlReply(exchanged.reply);
    if (!reply.ok()) return fail(complain(printable(reply.error)));
    if (!options.json) return resultText(options.request, *reply.result);
    // For programs that follow it, one line each time.
    return options.watch ? reply.result->dump(-1, ' ', false, Json::error_handler_t::replace) + "\n"
                         : indented(*reply.result);
  } catch (const DecodingError& error) {
    return fail(complain("Kestrel's answer cannot be read: " + std::string(error.what())));
  }
}

}  // namespace

int runControl(const ControlOptions& options, const std::string& ownPath) {
  const auto directories = userDirectories();
  if (!directories) return complain("HOME names no home directory");
  if (options.helper) return runHelperCommand(*options.helper, *directories, ownPath);
  if (options.usage) {
    return runUsageCommand(*options.usage, *directories,
                           [&] { return answerOfKestrel(*directories, "usage"); });
  }
  if (options.agents) {
    return runAgentsCommand(*options.agents, *directories,
                            [&] { return answerOfKestrel(*directories, "sessions"); });
  }
  if (options.setup) return runSetupCommand(*options.setup, *directories, ownPath);
  if (options.run) return runRunCommand(*options.run, *directories);
  int failure = kControlDone;
  const auto text = [&] { return answerText(options, *directories, failure); };
  if (options.watch) return watch(text) ? kControlFailed : failure;
  const auto answer = text();
  return answer ? print(*answer) : failure;
}

}  // namespace kestrel
