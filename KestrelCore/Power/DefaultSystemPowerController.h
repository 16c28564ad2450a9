#pragma once

#include <memory>
#include <string>

#include "KestrelCore/Platform/SystemPowerControlling.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// The sleep override through the system's tool `pmset`. Setting it needs root. Each call waits for the tool,
/// a second at most.
class DefaultSystemPowerController final : public SystemPowerControlling {
 public:
  static constexpr const char* kPmset = "/usr/bin/pmset";

  explicit DefaultSystemPowerController(std::shared_ptr<LogSink> sink, std::string pmset = kPmset);

  [[nodiscard]] bool readSleepDisabled() override;
  void writeSleepDisabled(bool disabled) override;

 private:
  const Logger logger_;
  const std::string pmset_;
};

}  // namespace kestrel
