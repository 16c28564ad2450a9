#include "KestrelControl/Control.h"

#include <cstdio>
#include <string>
#include <vector>

#include "KestrelControl/AgentsCommand.h"
#include "KestrelControl/HelperCommand.h"
#include "KestrelControl/Output.h"
#include "KestrelControl/StatusText.h"
#include "KestrelControl/UsageCommand.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

/// At each step; Kestrel answers within milliseconds.
constexpr double kTimeoutSeconds = 5;

int notRunning() {
  std::fputs("Kestrel is not running.\n", stderr);
  return kControlNotRunning;
}

/// Asks at the first place where somebody listens.
SocketExchange exchange(const Directories& directories, const ControlRequest& request) {
  std::vector<Directories> places{directories};
  for (const auto& folder : alternativeApplicationSupport(directories)) {
    places.push_back(directories);
    places.back().applicationSupport = folder;
  }
  SocketExchange result;
  for (const auto& place : places) {
    result = exchangeOverSocket(place.controlSocket(), encodeControlRequest(request), kTimeoutSeconds,
                                ControlReply::kMaximumBytes);
    if (result.outcome != SocketExchange::Outcome::nobodyListens) break;
  }
  return result;
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
  const SocketExchange exchanged = exchange(directories, {command, {}});
  if (exchanged.outcome != SocketExchange::Outcome::replied) return nullptr;
  try {
    const ControlReply reply = decodeControlReply(exchanged.reply);
    return reply.ok() ? *reply.result : Json(nullptr);
  } catch (const DecodingError&) {
    return nullptr;
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
  const SocketExchange exchanged = exchange(*directories, options.request);
  if (exchanged.outcome == SocketExchange::Outcome::nobodyListens) {
    return notRunning();
  }
  if (exchanged.outcome == SocketExchange::Outcome::failed) {
    return complain("Kestrel does not answer at " + directories->controlSocket().string());
  }
  try {
    const ControlReply reply = decodeControlReply(exchanged.reply);
    if (!reply.ok()) return complain(printable(reply.error));
    return print(options.json ? indented(*reply.result) : resultText(options.request, *reply.result));
  } catch (const DecodingError& error) {
    return complain("Kestrel's answer cannot be read: " + std::string(error.what()));
  }
}

}  // namespace kestrel
