#include <Foundation/Foundation.h>

#include <atomic>
#include <string>
#include <utility>

#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Published.h"
#include "KestrelPlatform/macOS/CFValues.h"
#include "KestrelPlatform/macOS/DefaultsObserver.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

NSString* keyNamed(std::string_view key) {
  return (__bridge_transfer NSString*)makeCFString(key).release();
}

// What a change seen on any thread needs to reach the main thread, and to be dropped when the backend is
// gone.
struct OutsideChanges {
  explicit OutsideChanges(Executor& executor) : mainExecutor(executor) {}

  static void announce(const std::shared_ptr<OutsideChanges>& changes) {
    // This process's own writes are told at once, on the thread that writes.
    if ([NSThread isMainThread] && changes->isWriting) return;
    if (changes->isPending.exchange(true)) return;
    changes->mainExecutor.post([weak = std::weak_ptr(changes)] {
      const auto alive = weak.lock();
      if (!alive) return;
      alive->isPending = false;
      alive->signal();
    });
  }

  Executor& mainExecutor;
  std::atomic<bool> isPending{false};
  Signal<> signal;         // main thread only
  bool isWriting = false;  // main thread only
};

class MacUserDefaults final : public UserDefaults {
 public:
  MacUserDefaults(Executor& mainExecutor, const std::shared_ptr<LogSink>& logSink)
      : logger_(logSink, "settings"),
        changes_(std::make_shared<OutsideChanges>(mainExecutor)),
        defaults_([NSUserDefaults standardUserDefaults]) {
    const std::weak_ptr<OutsideChanges> weak = changes_;
    observer_ = [[KestrelDefaultsObserver alloc] initWithDefaults:defaults_
                                                         onChange:^{
                                                           const auto changes = weak.lock();
                                                           if (changes) OutsideChanges::announce(changes);
                                                         }];
  }
  ~MacUserDefaults() override { [observer_ stop]; }
  MacUserDefaults(const MacUserDefaults&) = delete;
  MacUserDefaults& operator=(const MacUserDefaults&) = delete;

  std::optional<bool> boolForKey(std::string_view key) const override { return read(key, boolValue); }
  std::optional<std::int64_t> integerForKey(std::string_view key) const override {
    return read(key, integerValue);
  }
  std::optional<double> doubleForKey(std::string_view key) const override { return read(key, doubleValue); }
  std::optional<Date> dateForKey(std::string_view key) const override { return read(key, dateValue); }

  bool setBool(std::string_view key, bool value) override {
    return write(key, ^(NSString* name) {
      [defaults_ setBool:value forKey:name];
    });
  }
  bool setInteger(std::string_view key, std::int64_t value) override {
    return write(key, ^(NSString* name) {
      [defaults_ setInteger:value forKey:name];
    });
  }
  bool setDouble(std::string_view key, double value) override {
    return write(key, ^(NSString* name) {
      [defaults_ setDouble:value forKey:name];
    });
  }
  bool setDate(std::string_view key, Date value) override {
    const double seconds = value.secondsSinceReferenceDate();
    return write(key, ^(NSString* name) {
      id date = (__bridge_transfer id)CFDateCreate(kCFAllocatorDefault, seconds);
      [defaults_ setObject:date forKey:name];
    });
  }
  bool remove(std::string_view key) override {
    return write(key, ^(NSString* name) {
      [defaults_ removeObjectForKey:name];
    });
  }

  // The settings service answers for what it stores.
  std::optional<std::string> problem() const override { return std::nullopt; }

  RegistrationPtr observeOutsideChanges(std::function<void()> onChange) override {
    return changes_->signal.subscribe(std::move(onChange));
  }

 private:
  template <typename Value>
  std::optional<Value> read(std::string_view key, std::optional<Value> (*convert)(CFTypeRef)) const {
    @autoreleasepool {
      NSString* name = keyNamed(key);
      [observer_ watchKey:name];
      id object = [defaults_ objectForKey:name];
      return convert((__bridge CFTypeRef)object);
    }
  }

  bool write(std::string_view key, void (^change)(NSString*)) {
    @autoreleasepool {
      changes_->isWriting = true;
      change(keyNamed(key));
      changes_->isWriting = false;
    }
    // Waits until the settings service has it.
    const bool isKept = CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication) != 0;
    if (!isKept) logger_.error("Failed to store the setting {}: the system did not keep it", key);
    return isKept;
  }

  const Logger logger_;
  const std::shared_ptr<OutsideChanges> changes_;
  NSUserDefaults* const defaults_;
  KestrelDefaultsObserver* observer_;
};

}  // namespace

std::unique_ptr<UserDefaults> makeMacUserDefaults(Executor& mainExecutor,
                                                  const std::shared_ptr<LogSink>& logSink) {
  return std::make_unique<MacUserDefaults>(mainExecutor, logSink);
}

}  // namespace kestrel
