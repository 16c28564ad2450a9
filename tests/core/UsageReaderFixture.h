#pragma once

#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <gmock/gmock.h>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/Providers/UsageReader.h"
#include "KestrelCore/Usage/UsageSummaryBuilder.h"

namespace kestrel {

/// A home with an agent's records, a reader of them, and the account that its events go to.
class UsageReaderFixture {
 public:
  using Make = std::unique_ptr<UsageReader> (*)(const UsageReaderDependencies&);

  explicit UsageReaderFixture(Make make) : make_(make) { restart(); }

  [[nodiscard]] UsageReaderDependencies dependencies() {
    return {.home = home(),
            .clock = world.clock,
            .log = world.sink,
            .hasTurn = [this](AgentType, const std::string& id) { return turns_.contains(id); }};
  }
  [[nodiscard]] const std::filesystem::path& home() const { return world.directories().home; }
  /// A new reader; what was counted stays.
  void restart() { reader_ = make_(dependencies()); }
  /// Reads, and accounts for what was not there before, as the store does.
  std::vector<UsageEvent> poll() {
    std::vector<UsageEvent> events;
    reader_->read([&](const UsageEvent& event) { events.push_back(event); });
    for (const auto& event : events) {
      turns_.insert(event.turnId.value_or(""));
      const bool isStored = keys_.insert(event.deduplicationKey()).second;
      EXPECT_TRUE(!isStored || sums_.add(event));
    }
    return events;
  }
  [[nodiscard]] UsageSummary counted() const { return sums_.summary(); }
  [[nodiscard]] std::optional<ProviderBudgetReport> report() { return reader_->report(); }

  /// Adds to a file and makes it the newest.
  void append(const std::filesystem::path& path, std::string_view text) {
    std::filesystem::create_directories((home() / path).parent_path());
    std::ofstream(home() / path, std::ios::binary | std::ios::app) << text;
    std::filesystem::last_write_time(home() / path, time_ += std::chrono::seconds(1));
  }

  TestWorld world;

 private:
  const Make make_;
  std::unique_ptr<UsageReader> reader_;
  std::set<std::string> turns_;
  std::set<std::string> keys_;
  UsageSummaryBuilder sums_;
  std::filesystem::file_time_type time_ = std::filesystem::file_time_type::clock::now();
};

/// As JSON, without the cost, whose last digits are no matter, and without the id if it is random.
inline std::string shown(UsageEvent event) {
  event.costEstimateUSD.reset();
  if (event.id.size() == 36) event.id.clear();
  return dumpJson(encode(event));
}

inline std::vector<std::string> turnIds(const std::vector<UsageEvent>& events) {
  std::vector<std::string> ids;
  for (const auto& event : events) ids.push_back(event.turnId.value_or("-"));
  return ids;
}

}  // namespace kestrel
