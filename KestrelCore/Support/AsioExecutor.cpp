#include "KestrelCore/Support/AsioExecutor.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <optional>
#include <system_error>
#include <type_traits>
#include <utility>

namespace kestrel {
namespace {

std::chrono::steady_clock::duration toDuration(double seconds) {
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
      std::chrono::duration<double>(seconds));
}

/// A timer or descriptor and its task, kept alive by the handler that waits for it, so by the loop alone.
template <typename Object>
struct Watched {
  Watched(asio::io_context& context, Executor::Task work) : object(context), task(std::move(work)) {}
  Object object;
  Executor::Task task;
  std::atomic<bool> ended{false};
};

/// Ends a Watched. The Asio object may be touched on the loop's thread only, elsewhere the loop is asked to.
template <typename Object>
class LoopRegistration final : public Registration {
 public:
  LoopRegistration(std::weak_ptr<asio::io_context> loop, std::weak_ptr<Watched<Object>> watched)
      : loop_(std::move(loop)), watched_(std::move(watched)) {}
  ~LoopRegistration() override {
    const auto loop = loop_.lock();  // Outlives `watched` below.
    const auto watched = loop ? watched_.lock() : nullptr;
    if (!watched) return;
    watched->ended = true;
    if (loop->get_executor().running_in_this_thread()) {
      cancel(*watched);
    } else {
      asio::post(*loop, [watched] { cancel(*watched); });
    }
  }

 private:
  static void cancel(Watched<Object>& watched) {
    if constexpr (std::is_same_v<Object, asio::steady_timer>) {
      watched.object.cancel();
    } else {
      std::error_code ignored;
      watched.object.close(ignored);
    }
  }

  std::weak_ptr<asio::io_context> loop_;
  std::weak_ptr<Watched<Object>> watched_;
};

using Timer = Watched<asio::steady_timer>;
using Stream = asio::posix::stream_descriptor;

void armTimer(const std::shared_ptr<Timer>& timer, double interval) {
  timer->object.async_wait([timer, interval](const std::error_code& error) {
    if (error || timer->ended) return;
    if (interval > 0) {
      // What was missed while the machine slept is not made up.
      const auto now = std::chrono::steady_clock::now();
      const auto next = timer->object.expiry() + toDuration(interval);
      timer->object.expires_at(next > now ? next : now + toDuration(interval));
      armTimer(timer, interval);
    }
    timer->task();
  });
}

void armStream(const std::shared_ptr<Watched<Stream>>& stream, Stream::wait_type type) {
  stream->object.async_wait(type, [stream, type](const std::error_code& error) {
    if (error || stream->ended) return;
    stream->task();
    if (!stream->ended) armStream(stream, type);
  });
}

}  // namespace

struct AsioExecutor::Loop {
  std::shared_ptr<asio::io_context> context = std::make_shared<asio::io_context>(1);
  std::optional<asio::executor_work_guard<asio::io_context::executor_type>> work{context->get_executor()};
};

AsioExecutor::AsioExecutor() : loop_(std::make_unique<Loop>()) {}
AsioExecutor::~AsioExecutor() = default;

void AsioExecutor::run() {
  loop_->context->run();
}
void AsioExecutor::stop() {
  loop_->context->stop();
}
void AsioExecutor::post(Task task) {
  asio::post(*loop_->context, std::move(task));
}

RegistrationPtr AsioExecutor::after(double delaySeconds, Task task) {
  return repeat(delaySeconds, 0, std::move(task));
}

RegistrationPtr AsioExecutor::repeat(double firstSeconds, double intervalSeconds, Task task) {
  const auto timer = std::make_shared<Timer>(*loop_->context, std::move(task));
  timer->object.expires_after(toDuration(firstSeconds));
  armTimer(timer, intervalSeconds);
  return std::make_unique<LoopRegistration<asio::steady_timer>>(loop_->context, timer);
}

RegistrationPtr AsioExecutor::watch(int descriptor, Readiness readiness, Task task) {
  const auto stream = std::make_shared<Watched<Stream>>(*loop_->context, std::move(task));
  // A duplicate, so that one descriptor can be watched for both directions and closed at any time.
  std::error_code error;
  stream->object.assign(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0), error);
  if (error) return nullptr;
  armStream(stream, readiness == Readiness::readable ? Stream::wait_read : Stream::wait_write);
  return std::make_unique<LoopRegistration<Stream>>(loop_->context, stream);
}

}  // namespace kestrel
