#include <future>

#include "tests/platform/ExecutorContract.h"

#include "KestrelCore/Support/AsioExecutor.h"
#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"

namespace kestrel {
namespace {

ExecutorSubject makeManual() {
  auto* const self = new ManualExecutor;
  return {std::unique_ptr<Executor>(self), [self](double seconds) { self->advance(seconds); }};
}

ExecutorSubject makeAsio() {
  auto* const self = new AsioExecutor;
  return {std::unique_ptr<Executor>(self), [self](double seconds) {
            const auto end = self->after(seconds, [self] { self->stop(); });
            self->run();
          }};
}

ExecutorSubject makeQueue() {
  auto* const self = new SerialQueue("com.kestrel.test");
  return {std::unique_ptr<Executor>(self), [self](double seconds) {
            std::promise<void> passed;
            const auto end = self->after(seconds, [&] { passed.set_value(); });
            passed.get_future().wait();
          }};
}

INSTANTIATE_TEST_SUITE_P(Executors, ExecutorContract,
                         testing::Values(ExecutorKind{"manual", makeManual}, ExecutorKind{"asio", makeAsio},
                                         ExecutorKind{"queue", makeQueue}));

}  // namespace
}  // namespace kestrel
