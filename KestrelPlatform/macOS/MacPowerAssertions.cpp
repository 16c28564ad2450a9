#include <IOKit/pwr_mgt/IOPMLib.h>
#include <algorithm>
#include <fmt/format.h>
#include <mach/mach_error.h>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelPlatform/macOS/CFValues.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

constexpr const char* kService = "power management";

std::string ioReturnText(IOReturn code) {
  const char* text = ::mach_error_string(code);
  return fmt::format("{} (0x{:08x})", text != nullptr ? text : "unknown error",
                     static_cast<std::uint32_t>(code));
}

// The system takes names of at most 128 characters.
CFRef<CFStringRef> makeAssertionName(std::string_view text) {
  constexpr CFIndex kMaximumLength = 128;
  auto name = makeCFString(text);
  if (CFStringGetLength(name.get()) <= kMaximumLength) return name;
  // Not within a character that takes several units.
  const CFIndex length = CFStringGetRangeOfComposedCharactersAtIndex(name.get(), kMaximumLength).location;
  return CFRef<CFStringRef>(
      CFStringCreateWithSubstring(kCFAllocatorDefault, name.get(), CFRangeMake(0, length)));
}

struct ListedAssertion {
  std::string type;
  std::string name;
  friend bool operator==(const ListedAssertion&, const ListedAssertion&) = default;
};

std::vector<ListedAssertion> listAssertions(CFArrayRef entries) {
  std::vector<ListedAssertion> list;
  for (CFIndex i = 0; i < CFArrayGetCount(entries); ++i) {
    const auto entry = static_cast<CFTypeRef>(CFArrayGetValueAtIndex(entries, i));
    if (entry == nullptr || CFGetTypeID(entry) != CFDictionaryGetTypeID()) continue;
    const auto dictionary = static_cast<CFDictionaryRef>(entry);
    const auto level = integerValue(CFDictionaryGetValue(dictionary, kIOPMAssertionLevelKey));
    if (level == kIOPMAssertionLevelOff) continue;
    list.push_back({stringValue(CFDictionaryGetValue(dictionary, kIOPMAssertionTypeKey)).value_or(""),
                    stringValue(CFDictionaryGetValue(dictionary, kIOPMAssertionNameKey)).value_or("")});
  }
  return list;
}

/// What the system says this process holds; a code other than 0 when it does not say.
std::pair<IOReturn, std::vector<ListedAssertion>> readOwnAssertions() {
  CFDictionaryRef copied = nullptr;
  const IOReturn code = IOPMCopyAssertionsByProcess(&copied);
  const CFRef<CFDictionaryRef> byProcess(copied);
  if (code != kIOReturnSuccess || !byProcess) return {code, {}};
  const int pid = ::getpid();
  const CFRef<CFNumberRef> key(CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &pid));
  const auto entries = static_cast<CFTypeRef>(CFDictionaryGetValue(byProcess.get(), key.get()));
  if (entries == nullptr || CFGetTypeID(entries) != CFArrayGetTypeID()) return {code, {}};
  return {code, listAssertions(static_cast<CFArrayRef>(entries))};
}

class MacPowerAssertions final : public PowerAssertions {
 public:
  MacPowerAssertions(Executor& mainExecutor, const std::shared_ptr<LogSink>& logSink)
      : mainExecutor_(mainExecutor), logger_(logSink, "power"), callback_(std::make_shared<Callback>()) {}
  ~MacPowerAssertions() override {
    for (const auto& assertion : held_) IOPMAssertionRelease(assertion.id);
  }
  MacPowerAssertions(const MacPowerAssertions&) = delete;
  MacPowerAssertions& operator=(const MacPowerAssertions&) = delete;

  Creation create(std::string_view type, std::uint32_t level, std::string_view name) override {
    const auto typeString = makeCFString(type);
    const auto nameString = makeAssertionName(name);
    IOPMAssertionID id = kIOPMNullAssertionID;
    const IOReturn code = IOPMAssertionCreateWithName(typeString.get(), level, nameString.get(), &id);
    if (code != kIOReturnSuccess) return {code, 0};
    const LockGuard guard(mutex_);
    held_.push_back({id, {std::string(type), stringValue(nameString.get()).value_or("")}});
    return {code, id};
  }

  void release(PowerAssertionID id) override {
    LockGuard guard(mutex_);
    if (std::erase_if(held_, [id](const Held& held) { return held.id == id; }) == 0) return;
    guard.unlock();
    IOPMAssertionRelease(id);
  }

  std::vector<HoldEvidence> evidence() override {
    if (isEmpty()) return {};
    auto [code, listed] = readOwnAssertions();
    if (code != kIOReturnSuccess)
      logger_.error("Failed to read back power assertions: {}", ioReturnText(code));
    LockGuard guard(mutex_);
    const bool hasChanged = code == kIOReturnSuccess && matchListed(std::move(listed));
    std::vector<HoldEvidence> evidence;
    for (const Held& held : held_) {
      evidence.push_back(describe(held));
      if (code != kIOReturnSuccess) {
        evidence.back().state = HoldEvidenceState::pending;
        evidence.back().detail = "cannot be read back: " + ioReturnText(code);
      }
    }
    guard.unlock();
    if (hasChanged) postChange();
    return evidence;
  }

  std::vector<HoldEvidence> prospects() override {
    return {{kService, HoldKind::idle, HoldEvidenceState::pending, {}}};
  }
  void setOnEvidenceChanged(std::function<void()> callback) override { *callback_ = std::move(callback); }

 private:
  using Callback = std::function<void()>;

  struct Held {
    PowerAssertionID id = 0;
    ListedAssertion listing;
    HoldEvidenceState state = HoldEvidenceState::pending;
  };

  [[nodiscard]] bool isEmpty() {
    const LockGuard guard(mutex_);
    return held_.empty();
  }

  /// True when an assertion that was read back before has vanished or come back.
  bool matchListed(std::vector<ListedAssertion> listed) KESTREL_REQUIRES(mutex_) {
    bool hasChanged = false;
    for (Held& held : held_) {
      const auto match = std::ranges::find(listed, held.listing);
      const auto before = held.state;
      if (match != listed.end()) {
        // Equal assertions are told apart by their number only.
        listed.erase(match);
        held.state = HoldEvidenceState::held;
      } else if (before == HoldEvidenceState::held) {
        held.state = HoldEvidenceState::lost;
      }
      hasChanged = hasChanged || (before != HoldEvidenceState::pending && before != held.state);
    }
    return hasChanged;
  }

  static HoldEvidence describe(const Held& held) {
    const bool isDisplay = held.listing.type == kPreventIdleDisplaySleep;
    return {kService, isDisplay ? HoldKind::display : HoldKind::idle, held.state,
            fmt::format("assertion {}", held.id)};
  }

  // Whoever reads next would see it; the callback tells those who are not about to read.
  void postChange() {
    mainExecutor_.post([weak = std::weak_ptr(callback_)] {
      const auto callback = weak.lock();
      if (callback && *callback) (*callback)();
    });
  }

  Executor& mainExecutor_;
  const Logger logger_;
  const std::shared_ptr<Callback> callback_;
  Mutex mutex_{LockRank::leaf};
  std::vector<Held> held_ KESTREL_GUARDED_BY(mutex_);
};

}  // namespace

std::unique_ptr<PowerAssertions> makeMacPowerAssertions(Executor& mainExecutor,
                                                        const std::shared_ptr<LogSink>& logSink) {
  return std::make_unique<MacPowerAssertions>(mainExecutor, logSink);
}

}  // namespace kestrel
