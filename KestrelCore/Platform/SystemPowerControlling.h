#pragma once

namespace kestrel {

/// The switch that keeps the machine from sleeping, with the lid closed too. Only the helper uses it. Called
/// from one thread at a time; neither call may take longer than about a second.
class SystemPowerControlling {
 public:
  virtual ~SystemPowerControlling() = default;

  /// Whether sleep is switched off now, by this process or by the machine's owner. False when unknown.
  [[nodiscard]] virtual bool readSleepDisabled() = 0;
  /// Switches sleep off or lets it be again. A failure is logged and shows in `readSleepDisabled()`.
  virtual void writeSleepDisabled(bool disabled) = 0;
};

}  // namespace kestrel
