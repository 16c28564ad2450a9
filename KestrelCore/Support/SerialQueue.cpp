#include "KestrelCore/Support/SerialQueue.h"

#include <thread>
#include <utility>

#include "KestrelCore/Support/AsioExecutor.h"

namespace kestrel {

struct SerialQueue::Worker {
  AsioExecutor executor;
  std::thread thread{[this] { executor.run(); }};
};

SerialQueue::SerialQueue(std::string label) : label_(std::move(label)), worker_(std::make_unique<Worker>()) {}

SerialQueue::~SerialQueue() {
  worker_->executor.post([this] { worker_->executor.stop(); });
  worker_->thread.join();
}

void SerialQueue::post(Task task) {
  worker_->executor.post(std::move(task));
}

RegistrationPtr SerialQueue::after(double delaySeconds, Task task) {
  return worker_->executor.after(delaySeconds, std::move(task));
}

RegistrationPtr SerialQueue::repeat(double firstSeconds, double intervalSeconds, Task task) {
  return worker_->executor.repeat(firstSeconds, intervalSeconds, std::move(task));
}

RegistrationPtr SerialQueue::watch(int descriptor, Readiness readiness, Task task) {
  return worker_->executor.watch(descriptor, readiness, std::move(task));
}

}  // namespace kestrel
