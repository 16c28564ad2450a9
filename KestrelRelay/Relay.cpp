#include "KestrelRelay/Relay.h"

#include <chrono>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Platform/Directories.h"
#include "KestrelRelay/AgentProcess.h"
#include "KestrelRelay/Deadline.h"
#include "KestrelRelay/Delivery.h"
#include "KestrelRelay/PayloadReader.h"
#include "KestrelRelay/RelayRecord.h"
#include "KestrelRelay/StateMapping.h"

namespace kestrel {

namespace {

constexpr Deadline::Milliseconds kInputTime{100};
constexpr Deadline::Milliseconds kTotalTime{180};

HookPayload takePayload(const RelayOptions& options) {
  if (!options.jsonArgument) return readPayload(STDIN_FILENO, Deadline(kInputTime));
  HookPayloadParser parser;
  parser.feed(*options.jsonArgument);
  return parser.payload();
}

Date systemTime() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return Date::since1970(std::chrono::duration<double>(sinceEpoch).count());
}

std::optional<std::string> currentDirectory() {
  std::error_code error;
  auto directory = std::filesystem::current_path(error);
  if (error) return std::nullopt;
  return directory.native();
}

/// Asks the system only for what nobody has told.
HookSurroundings surroundings(const RelayOptions& options, const HookPayload& payload) {
  HookSurroundings result;
  result.now = systemTime();
  if (!options.pid) result.pid = nearestNonShell(getppid());
  if (!options.cwd && !payload.cwd) result.cwd = currentDirectory();
  return result;
}

std::string deliverToKestrel(Directories directories, std::string_view record, const Deadline& deadline) {
  const DeliveryResult first = deliver(directories.hookSocket(), record, deadline);
  if (first.connected) return first.problem;
  for (const auto& folder : alternativeApplicationSupport(directories)) {
    directories.applicationSupport = folder;
    const DeliveryResult result = deliver(directories.hookSocket(), record, deadline);
    if (result.connected) return result.problem;
  }
  return first.problem;
}

}  // namespace

std::string relayHook(const RelayOptions& options) {
  const Deadline deadline(kTotalTime);
  const HookPayload payload = takePayload(options);
  if (!options.agent || !options.state) return "agent and state are needed";
  auto state = std::optional(stateNamed(*options.state));
  if (*options.state == kAutomaticState) {
    if (!payload.event) return "the hook gave no event to take the state from";
    state = stateOfHook(payload);
    if (!state) return {};
  }
  auto directories = userDirectories();
  if (!directories) return "there is no home directory";
  const HookEvent event = makeHookEvent(options, payload, *state, surroundings(options, payload));
  return deliverToKestrel(*std::move(directories), encodeRecord(event), deadline);
}

}  // namespace kestrel
