#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/Linux/BusName.h"
#include "KestrelPlatform/Linux/BusValues.h"

namespace kestrel {

/// Follows the properties of some objects of one service, which may come, go and start again at any time and
/// is never started by this. Signals are only a reason to read: a change of the hardware comes in several of
/// them, each with a part of it. So all objects are read together, a moment after the first signal.
///
/// Main thread only. To be destroyed together with the link, without the executor running in between.
class BusProperties {
 public:
  struct Object {
    std::string path;
    std::string interface;
    /// The only property to read, where the others are expensive; all of them when empty.
    std::string property;
  };

  using Objects = std::vector<BusValues>;

  /// `title` names what is read in the log. An answer that is not `isUsable` is none. `onChange` is called
  /// after a reading, whether or not it differs, and when there is no longer one.
  BusProperties(BusLink& link, Executor& executor, Logger logger, std::string title, std::string service,
                std::vector<Object> objects, std::function<bool(const Objects&)> isUsable,
                std::function<void()> onChange);

  /// Of each object, in the order given. Absent as long as the service is not there or does not answer.
  [[nodiscard]] const std::optional<Objects>& values() const { return values_; }
  /// Reads now, if the service is there.
  void read();

 private:
  void followLink();
  void followName();
  void readSoon();
  void ask(std::size_t index);
  void take(std::size_t index, const BusReply& reply);
  void finish();
  void forget();

  BusLink& link_;
  Executor& executor_;
  const Logger logger_;
  const std::string title_;
  const std::vector<Object> objects_;
  const std::function<bool(const Objects&)> isUsable_;
  const std::function<void()> onChange_;
  std::optional<Objects> values_;
  /// What has been answered of the reading under way.
  Objects answers_;
  std::size_t unanswered_ = 0;
  /// Answers to an earlier reading, or from an earlier service, are late.
  unsigned reading_ = 0;
  bool changedMeanwhile_ = false;
  /// Why the reading under way, or the last one, failed; empty when it did not.
  std::string problem_;
  double retryDelay_;
  RegistrationPtr timer_;
  RegistrationPtr retry_;
  RegistrationPtr linkObserver_;
  BusName name_;
};

}  // namespace kestrel
