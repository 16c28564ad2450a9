#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelPlatform/Simulated/ManualClock.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel {

/// What most components are made with: a home of its own, a clock that stands still and a log to read.
struct TestWorld {
  [[nodiscard]] const Directories& directories() const { return folders.directories(); }

  TemporaryDirectories folders;
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
  std::shared_ptr<MemoryLogSink> sink = std::make_shared<MemoryLogSink>();
  std::shared_ptr<const KestrelWritePolicy> policy =
      std::make_shared<const KestrelWritePolicy>(folders.directories(), sink);
};

void writeFixture(const std::filesystem::path& path, std::string_view content);

/// Permission bits of what stands at a path.
unsigned modeOf(const std::filesystem::path& path);

/// A client that does exactly what it is told, so that bad manners can be tested.
class SocketClient {
 public:
  explicit SocketClient(const std::string& path);

  [[nodiscard]] bool isConnected() const { return isConnected_; }
  bool send(std::string_view bytes) const;
  void finishSending() const;
  /// Everything until the server closes, however it does; gives up on a server that is silent for 10 s.
  /// With a limit, no more than so many bytes.
  [[nodiscard]] std::string receive(std::size_t bytes = std::string::npos) const;

 private:
  UniqueDescriptor socket_;
  bool isConnected_ = false;
};

}  // namespace kestrel
