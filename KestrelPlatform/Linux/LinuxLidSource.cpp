#include "KestrelPlatform/Linux/LinuxLidSource.h"

#include <string>
#include <utility>

#include "KestrelPlatform/Linux/ChangeNotice.h"
#include "KestrelPlatform/Linux/SourceNote.h"

namespace kestrel {
namespace {

constexpr double kPollSeconds = 10;

class LinuxLidSource final : public LidSource {
 public:
  LinuxLidSource(Executor& executor, std::shared_ptr<LogSink> sink,
                 std::shared_ptr<HardwareServices> services, LidRoots roots)
      : services_(std::move(services)),
        roots_(std::move(roots)),
        notice_(executor),
        note_(executor, Logger(std::move(sink), "lid"), "The state of the lid",
              "There is no lid here, or it cannot be read; taken as open") {
    upowerObservation_ = services_->observeUPower([this] { look(); });
    loginManagerObservation_ = services_->observeLoginManager([this] { refresh(); });
    timer_ = executor.repeat(kPollSeconds, kPollSeconds, [this] { look(); });
    refresh();
  }

  [[nodiscard]] std::optional<bool> isClosed() override {
    notice_.markRead();
    return isClosed_;
  }
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) override {
    return notice_.observe(std::move(onChange));
  }
  [[nodiscard]] std::optional<std::string> sourceName() const override { return sourceName_; }

 private:
  /// The login manager answers later, which is told of then.
  void look() {
    services_->readLoginManager();
    refresh();
  }

  void refresh() {
    const auto [isClosed, name] = readNow();
    sourceName_ = name;
    note_.set(name);
    if (std::exchange(isClosed_, isClosed) != isClosed) notice_.tell();
  }

  [[nodiscard]] std::pair<std::optional<bool>, std::optional<std::string>> readNow() {
    const auto byLoginManager = services_->lidByLoginManager();
    const auto byUPower = services_->lidByUPower();
    // Without a lid the login manager says "not closed" just as well.
    hasLid_ = hasLid_ || byUPower || byLoginManager.value_or(false) || hasLidSwitch(roots_.inputDevices) ||
              readLidButton(roots_.lidButtons);
    if (byLoginManager && hasLid_) return {byLoginManager, "login manager"};
    if (byUPower) return {byUPower, "UPower"};
    if (const auto byButton = readLidButton(roots_.lidButtons)) return {byButton, kLidButtonRoot};
    return {};
  }

  const std::shared_ptr<HardwareServices> services_;
  const LidRoots roots_;
  ChangeNotice notice_;
  SourceNote note_;
  /// There was a sign of a lid once.
  bool hasLid_ = false;
  std::optional<bool> isClosed_;
  std::optional<std::string> sourceName_;
  RegistrationPtr upowerObservation_;
  RegistrationPtr loginManagerObservation_;
  RegistrationPtr timer_;
};

}  // namespace

std::unique_ptr<LidSource> makeLinuxLidSource(Executor& executor, std::shared_ptr<LogSink> sink,
                                              std::shared_ptr<HardwareServices> services, LidRoots roots) {
  return std::make_unique<LinuxLidSource>(executor, std::move(sink), std::move(services), std::move(roots));
}

}  // namespace kestrel
