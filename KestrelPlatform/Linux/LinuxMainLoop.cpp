#include "KestrelCore/Support/AsioExecutor.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

/// Nothing here needs another loop: D-Bus and the sockets are watched descriptors.
class LinuxMainLoop final : public MainLoop {
 public:
  [[nodiscard]] Executor& executor() override { return executor_; }
  void run() override { executor_.run(); }
  void stop() override { executor_.stop(); }

 private:
  AsioExecutor executor_;
};

}  // namespace

std::unique_ptr<MainLoop> makeMainLoop() {
  return std::make_unique<LinuxMainLoop>();
}

}  // namespace kestrel
