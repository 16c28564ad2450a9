#pragma once

#include <memory>

#include "KestrelCore/Platform/HelperPlatform.h"
#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

/// The helper, from its start until a signal or a request ends it. Members stand in the order in which they
/// are built and, backwards, released.
class HelperProgram {
 public:
  explicit HelperProgram(HelperPlaces places);

  /// Returns the exit status.
  [[nodiscard]] int run();

 private:
  [[nodiscard]] int serve();

  const HelperPlaces places_;
  const std::shared_ptr<const Clock> clock_;
  const std::shared_ptr<LogSink> logSink_;
  const std::shared_ptr<const KestrelWritePolicy> writePolicy_;
  const std::shared_ptr<const AtomicFileWriter> files_;
};

}  // namespace kestrel
