#include "KestrelRelay/HookPayload.h"

#include <array>

namespace kestrel {

namespace {

struct Source {
  std::string_view path;
  std::optional<std::string> HookPayload::*field;
};

// Of several names for one thing the first that is present counts.
constexpr std::array kSources{
    Source{"session_id", &HookPayload::sessionId},
    Source{"sessionId", &HookPayload::sessionId},
    Source{"sessionID", &HookPayload::sessionId},
    Source{"session", &HookPayload::sessionId},
    Source{"thread-id", &HookPayload::sessionId},
    Source{"thread_id", &HookPayload::sessionId},
    Source{"properties.sessionID", &HookPayload::sessionId},
    Source{"cwd", &HookPayload::cwd},
    Source{"directory", &HookPayload::cwd},
    Source{"model", &HookPayload::model},
    Source{"turn_id", &HookPayload::turnId},
    Source{"turn-id", &HookPayload::turnId},
    Source{"hook_event_name", &HookPayload::event},
    Source{"type", &HookPayload::event},
    Source{"notification_type", &HookPayload::notification},
    Source{"properties.status.type", &HookPayload::status},
};

constexpr auto kPaths = [] {
  std::array<std::string_view, kSources.size()> paths;
  for (std::size_t i = 0; i < paths.size(); ++i) paths[i] = kSources[i].path;
  return paths;
}();

}  // namespace

HookPayloadParser::HookPayloadParser() : scanner_(kPaths) {}

HookPayload HookPayloadParser::payload() const {
  HookPayload payload;
  for (std::size_t i = 0; i < kSources.size(); ++i) {
    auto& field = payload.*kSources[i].field;
    const auto& value = scanner_.value(i);
    if (!field && value && !value->empty()) field = value;
  }
  return payload;
}

}  // namespace kestrel
