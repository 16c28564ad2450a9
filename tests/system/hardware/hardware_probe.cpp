// Tells what the hardware reads, one line on standard output for each reading that changes:
//   power SOURCE | AC Power|Battery Power | charging|- | PERCENT|- | MINUTES|- | saving|-
//   heat SOURCE | LEVEL
//   lid SOURCE | open|closed|unknown
// Arguments: folders that stand for /sys/class/power_supply, /sys/class/thermal, /proc/acpi/button/lid and
// /sys/class/input. The log goes to standard error. Ends with its standard input.
#include <cstdio>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>

#include "KestrelCore/Support/AsioExecutor.h"
#include "KestrelPlatform/Linux/LinuxLidSource.h"
#include "KestrelPlatform/Linux/LinuxLowPowerMode.h"
#include "KestrelPlatform/Linux/LinuxPowerSource.h"
#include "KestrelPlatform/Linux/LinuxThermalSource.h"

namespace {

using namespace kestrel;

class StandardErrorSink final : public LogSink {
 public:
  bool isEnabled(LogLevel) const override { return true; }
  void write(const LogRecord& record) override {
    std::fprintf(stderr, "[%.*s] %.*s\n", static_cast<int>(record.category.size()), record.category.data(),
                 static_cast<int>(record.message.size()), record.message.data());
  }
};

class Probe {
 public:
  Probe(AsioExecutor& executor, char** folders) {
    const auto sink = std::make_shared<StandardErrorSink>();
    auto services = std::make_shared<HardwareServices>(executor, sink);
    power_ = makeLinuxPowerSource(executor, sink, services, folders[0]);
    mode_ = makeLinuxLowPowerMode(services);
    heat_ = makeLinuxThermalSource(executor, sink, folders[1]);
    lid_ = makeLinuxLidSource(executor, sink, services, {folders[2], folders[3]});
    follow(*power_, [this] { return powerLine(); });
    follow(*heat_, [this] { return "heat " + name(*heat_) + std::to_string(heat_->level()); });
    follow(*lid_, [this] {
      const auto closed = lid_->isClosed();
      return "lid " + name(*lid_) + (!closed ? "unknown" : *closed ? "closed" : "open");
    });
    input_ = executor.watch(STDIN_FILENO, Executor::Readiness::readable, [&executor] {
      char byte = 0;
      if (::read(STDIN_FILENO, &byte, 1) == 0) executor.stop();
    });
  }

 private:
  template <typename Source>
  void follow(Source& source, const std::function<std::string()>& line) {
    const auto print = [line] { std::cout << line() << std::endl; };
    print();
    observations_.push_back(source.observe(print));
  }
  template <typename Source>
  static std::string name(const Source& source) {
    return source.sourceName().value_or("-") + " | ";
  }
  std::string powerLine() {
    const auto list = power_->read();
    std::string line = "power " + name(*power_);
    if (!list) return line + "unknown";
    const PowerSourceDescription& source = list->front().value();
    const auto number = [](const auto& value) { return value ? std::to_string(*value) : std::string("-"); };
    return line + source.powerSourceState.value_or("-") + " | " +
           (source.isCharging.value_or(false) ? "charging" : "-") + " | " + number(source.currentCapacity) +
           " | " + number(source.timeToEmpty) + " | " + (mode_->isEnabled() ? "saving" : "-");
  }

  std::unique_ptr<PowerSource> power_;
  std::unique_ptr<LowPowerMode> mode_;
  std::unique_ptr<ThermalSource> heat_;
  std::unique_ptr<LidSource> lid_;
  std::vector<RegistrationPtr> observations_;
  RegistrationPtr input_;
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 5) return 2;
  AsioExecutor executor;
  const Probe probe(executor, arguments + 1);
  executor.run();
  return 0;
}
