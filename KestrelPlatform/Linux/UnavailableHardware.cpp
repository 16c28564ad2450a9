#include "KestrelPlatform/Linux/UnavailableHardware.h"

#include <string_view>
#include <utility>

#include "KestrelCore/Support/Logger.h"

namespace kestrel {
namespace {

/// Says something the first time it is asked to.
class Remark {
 public:
  Remark(std::shared_ptr<LogSink> sink, std::string_view category, std::string_view text)
      : logger_(std::move(sink), category), text_(text) {}

  void sayOnce() {
    if (!std::exchange(said_, true)) logger_.info("{}", text_);
  }

 private:
  const Logger logger_;
  const std::string_view text_;
  bool said_ = false;
};

class UnavailablePowerSource final : public PowerSource {
 public:
  explicit UnavailablePowerSource(std::shared_ptr<LogSink> sink)
      : remark_(std::move(sink), "battery", "The power source cannot be read here; taken as mains power") {}

  [[nodiscard]] std::optional<List> read() override {
    remark_.sayOnce();
    return std::nullopt;
  }
  [[nodiscard]] RegistrationPtr observe(std::function<void()>) override { return nullptr; }
  [[nodiscard]] std::optional<std::string> sourceName() const override { return std::nullopt; }

 private:
  Remark remark_;
};

class UnavailableLowPowerMode final : public LowPowerMode {
 public:
  explicit UnavailableLowPowerMode(std::shared_ptr<LogSink> sink)
      : remark_(std::move(sink), "battery", "The low-power mode cannot be read here; taken as off") {}

  [[nodiscard]] bool isEnabled() override {
    remark_.sayOnce();
    return false;
  }

 private:
  Remark remark_;
};

class UnavailableThermalSource final : public ThermalSource {
 public:
  explicit UnavailableThermalSource(std::shared_ptr<LogSink> sink)
      : remark_(std::move(sink), "thermal", "The temperature cannot be read here; taken as nominal") {}

  [[nodiscard]] int level() override {
    remark_.sayOnce();
    return 0;
  }
  [[nodiscard]] RegistrationPtr observe(std::function<void()>) override { return nullptr; }
  [[nodiscard]] std::optional<std::string> sourceName() const override { return std::nullopt; }

 private:
  Remark remark_;
};

class UnavailableLidSource final : public LidSource {
 public:
  explicit UnavailableLidSource(std::shared_ptr<LogSink> sink)
      : remark_(std::move(sink), "lid", "The lid cannot be read here; taken as open") {}

  [[nodiscard]] std::optional<bool> isClosed() override {
    remark_.sayOnce();
    return std::nullopt;
  }
  [[nodiscard]] RegistrationPtr observe(std::function<void()>) override { return nullptr; }
  [[nodiscard]] std::optional<std::string> sourceName() const override { return std::nullopt; }

 private:
  Remark remark_;
};

}  // namespace

std::unique_ptr<PowerSource> makeUnavailablePowerSource(std::shared_ptr<LogSink> sink) {
  return std::make_unique<UnavailablePowerSource>(std::move(sink));
}

std::unique_ptr<LowPowerMode> makeUnavailableLowPowerMode(std::shared_ptr<LogSink> sink) {
  return std::make_unique<UnavailableLowPowerMode>(std::move(sink));
}

std::unique_ptr<ThermalSource> makeUnavailableThermalSource(std::shared_ptr<LogSink> sink) {
  return std::make_unique<UnavailableThermalSource>(std::move(sink));
}

std::unique_ptr<LidSource> makeUnavailableLidSource(std::shared_ptr<LogSink> sink) {
  return std::make_unique<UnavailableLidSource>(std::move(sink));
}

}  // namespace kestrel
