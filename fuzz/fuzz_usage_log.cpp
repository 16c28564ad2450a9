#include <algorithm>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "fuzz/Require.h"

#include "KestrelCore/Usage/Providers/UsageReader.h"
#include "KestrelPlatform/Simulated/ManualClock.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace {

using namespace kestrel;

/// Writes a log in two parts, with a reading after each, and adds up what the events say. The same log at
/// once has to give the same.
std::int64_t readInParts(const UsageReaderDependencies& dependencies, std::string_view log,
                         std::size_t first) {
  std::int64_t sum = 0;
  for (const auto& [folder, make] :
       {std::pair(claudeProjectsFolder(dependencies.home), &makeClaudeUsageReader),
        std::pair(codexSessionsFolder(dependencies.home), &makeCodexUsageReader)}) {
    std::filesystem::create_directories(folder);
    std::filesystem::remove(folder / "a.jsonl");
    const auto reader = make(dependencies);
    for (const auto part : {log.substr(0, first), log.substr(first)}) {
      std::ofstream(folder / "a.jsonl", std::ios::binary | std::ios::app) << part;
      reader->read([&](const UsageEvent& event) {
        sum += event.inputTokens.value_or(0) + event.outputTokens.value_or(0) + event.totalTokens.value_or(0);
      });
    }
  }
  return sum;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TemporaryDirectories kFolders;
  static const UsageReaderDependencies kDependencies{
      .home = kFolders.directories().home,
      .clock = std::make_shared<ManualClock>(),
      .log = std::make_shared<MemoryLogSink>(),
      .hasTurn = [](AgentType, const std::string&) { return false; }};
  if (size < 2) return 0;
  const std::string_view log(reinterpret_cast<const char*>(data) + 1, size - 1);
  // A part that ends with a whole object is a line, so only parts that end with a line feed are the same.
  const auto cut = log.substr(0, log.size() * data[0] / 256).rfind('\n');
  require(readInParts(kDependencies, log, cut == std::string_view::npos ? 0 : cut + 1) ==
              readInParts(kDependencies, log, log.size()),
          "the parts are worth the whole");
  return 0;
}
