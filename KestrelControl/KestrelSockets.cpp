#include "KestrelControl/KestrelSockets.h"

#include <functional>
#include <string>
#include <vector>

#include "KestrelCore/Agents/HookEventReceiver.h"

namespace kestrel {
namespace {

constexpr double kTimeoutSeconds = 5;
constexpr std::size_t kMaximumHookReplyBytes = 4096;

using SocketOf = std::function<std::string(const Directories&)>;

SocketExchange exchange(const Directories& directories, const SocketOf& socketOf, std::string_view request,
                        std::size_t maximumReplyBytes) {
  std::vector<Directories> places{directories};
  for (const auto& folder : alternativeApplicationSupport(directories)) {
    places.push_back(directories);
    places.back().applicationSupport = folder;
  }
  SocketExchange result;
  for (const auto& place : places) {
    result = exchangeOverSocket(socketOf(place), request, kTimeoutSeconds, maximumReplyBytes);
    if (result.outcome != SocketExchange::Outcome::nobodyListens) break;
  }
  return result;
}

}  // namespace

SocketExchange askKestrel(const Directories& directories, const ControlRequest& request) {
  return exchange(
      directories, [](const Directories& place) { return place.controlSocket().string(); },
      encodeControlRequest(request), ControlReply::kMaximumBytes);
}

bool reportToKestrel(const Directories& directories, const HookEvent& event) {
  const auto exchanged = exchange(
      directories, [](const Directories& place) { return HookEventReceiver::defaultSocketPath(place); },
      event.toJSONData(), kMaximumHookReplyBytes);
  return exchanged.outcome == SocketExchange::Outcome::replied &&
         exchanged.reply.starts_with(R"({"ok":true)");
}

}  // namespace kestrel
