#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// Keeps the machine awake in the ordinary way, on request. Safe from any thread.
class IdleWakeControlling {
 public:
  virtual ~IdleWakeControlling() = default;
  [[nodiscard]] virtual bool isActive() const = 0;
  /// Ensures that the assertions are held, the display's exactly when asked for. A changed reason alone
  /// changes nothing. A failure shows in `isActive`; the next call tries again.
  virtual void acquire(const std::string& reason, bool preventDisplaySleep) = 0;
  virtual void release() = 0;
  /// What the system says of what was asked for.
  [[nodiscard]] virtual std::vector<HoldEvidence> evidence() = 0;
};

/// Holds the system's power assertions; the only place that does. Releases them when it is destroyed.
class IdleWakeAssertionController final : public IdleWakeControlling {
 public:
  IdleWakeAssertionController(PowerAssertions& assertions, std::shared_ptr<LogSink> sink);
  ~IdleWakeAssertionController() override;
  IdleWakeAssertionController(const IdleWakeAssertionController&) = delete;
  IdleWakeAssertionController& operator=(const IdleWakeAssertionController&) = delete;

  [[nodiscard]] bool isActive() const override;
  void acquire(const std::string& reason, bool preventDisplaySleep) override;
  void release() override;
  [[nodiscard]] std::vector<HoldEvidence> evidence() override;

 private:
  void releaseAll() KESTREL_REQUIRES(lock_);
  void releaseOne(PowerAssertionID& id, std::string_view type) KESTREL_REQUIRES(lock_);

  PowerAssertions& assertions_;
  const Logger logger_;
  mutable Mutex lock_;
  /// 0 means none held; the display's is held only together with the system's.
  PowerAssertionID systemAssertionID_ KESTREL_GUARDED_BY(lock_) = 0;
  PowerAssertionID displayAssertionID_ KESTREL_GUARDED_BY(lock_) = 0;
};

}  // namespace kestrel
