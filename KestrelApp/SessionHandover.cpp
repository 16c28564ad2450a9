#include "KestrelApp/SessionHandover.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

/// More than any system's pipe holds.
constexpr std::size_t kMostBytes = 1024 * 1024;

HookEvent reportOf(const AgentSession& session) {
  HookEvent event;
  event.agent = session.agentType;
  event.sessionId = session.id;
  event.state = session.state;
  event.timestamp = session.lastEventAt;
  event.pid = session.pid;
  event.cwd = session.cwd;
  return event;
}

/// Those that are found by process will be found again.
bool isWorthTelling(const AgentSession& session) {
  return session.integrationType != IntegrationType::process && session.state != AgentState::stale;
}

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer{};
  while (text.size() < kMostBytes) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count <= 0) break;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

UniqueDescriptor handOverSessions(const SessionTable& sessions) {
  std::array<int, 2> ends{-1, -1};
  if (::pipe(ends.data()) != 0) return {};
  UniqueDescriptor output(ends[0]);
  const UniqueDescriptor input(ends[1]);
  (void)::fcntl(input.get(), F_SETFD, FD_CLOEXEC);
  setNonBlocking(input.get(), true);
  std::vector<AgentSessionPtr> ordered;
  for (const auto& [id, session] : sessions) {
    if (isWorthTelling(*session)) ordered.push_back(session);
  }
  std::ranges::stable_partition(ordered, [](const auto& session) { return session->isWorking(); });
  for (const auto& session : ordered) {
    const std::string line = reportOf(*session).toJSONData() + "\n";
    if (::write(input.get(), line.data(), line.size()) != static_cast<ssize_t>(line.size())) break;
  }
  return output;
}

std::vector<HookEvent> takeOverSessions(UniqueDescriptor pipe, Date now) {
  std::vector<HookEvent> events;
  struct stat status {};
  if (::fstat(pipe.get(), &status) != 0 || !S_ISFIFO(status.st_mode)) return events;
  setNonBlocking(pipe.get(), true);
  const std::string text = readAll(pipe.get());
  for (std::size_t begin = 0, end = 0; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
    try {
      events.push_back(HookEvent::parse(std::string_view(text).substr(begin, end - begin), now));
    } catch (const DecodingError&) {
      continue;
    }
  }
  return events;
}

}  // namespace kestrel
