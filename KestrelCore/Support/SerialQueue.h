#pragma once

#include <memory>
#include <string>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// One labelled thread that runs tasks in order. Destruction finishes the tasks already posted, then joins;
/// never destroy it from its own thread.
class SerialQueue final : public Executor {
 public:
  explicit SerialQueue(std::string label);
  ~SerialQueue() override;
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  [[nodiscard]] const std::string& label() const { return label_; }

  void post(Task task) override;
  [[nodiscard]] RegistrationPtr after(double delaySeconds, Task task) override;
  [[nodiscard]] RegistrationPtr repeat(double firstSeconds, double intervalSeconds, Task task) override;
  [[nodiscard]] RegistrationPtr watch(int descriptor, Readiness readiness, Task task) override;

 private:
  struct Worker;
  std::string label_;
  std::unique_ptr<Worker> worker_;
};

}  // namespace kestrel
