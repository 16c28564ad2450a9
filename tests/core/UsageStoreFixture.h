#pragma once

#include <string>
#include <vector>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Usage/UsageStore.h"

namespace kestrel {

/// A store in a home of its own, to be opened and closed as often as a test likes.
struct UsageStoreWorld {
  UsageStoreWorld() { open(); }
  void open() {
    store.reset();
    store.emplace(dependencies());
  }
  [[nodiscard]] UsageStore::Dependencies dependencies(bool writing = true) const {
    return {file, writing ? files : nullptr, world.clock, std::make_shared<const SystemLocalCalendar>(),
            world.sink};
  }
  /// A reader's view of what is on disk.
  [[nodiscard]] std::vector<UsageEvent> onDisk() const { return UsageStore(dependencies(false)).allEvents(); }
  static std::string content(const std::filesystem::path& path) {
    return readWholeFile(path, 1 << 28).value_or("unreadable");
  }
  [[nodiscard]] std::size_t logged(std::string_view part) const { return world.sink->count(part); }
  /// So many make a file that is not written anew for each event any more.
  void recordTurns(const std::string& prefix, int count = 500) {
    std::vector<UsageEvent> batch;
    for (int i = 0; i < count; ++i) batch.push_back(turn(prefix + std::to_string(i)));
    ASSERT_EQ(store->record(batch), batch.size());
  }
  static UsageEvent turn(const std::string& turnId, std::int64_t output = 7) {
    UsageEvent event;
    event.id = "id-" + turnId;
    event.agentType = AgentType::claude;
    event.sessionId = "s-1";
    event.turnId = turnId;
    event.outputTokens = event.totalTokens = output;
    event.timestamp = ManualClock::kDefaultStart;
    return event;
  }

  const TestWorld world;
  std::shared_ptr<const AtomicFileWriter> files =
      std::make_shared<const AtomicFileWriter>(world.policy, Logger(world.sink, "files"));
  const std::filesystem::path file = UsageStore::defaultFile(world.directories());
  const std::filesystem::path journal = file.string() + ".journal";
  const std::string aside = ".undecodable-20261121T032705Z";
  std::optional<UsageStore> store;
};

}  // namespace kestrel
