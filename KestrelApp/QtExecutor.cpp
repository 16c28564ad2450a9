#include "KestrelApp/QtExecutor.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <fcntl.h>
#include <thread>
#include <utility>

#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

/// Rounded up: a timer that fires early would find that nothing is due.
int toMilliseconds(double seconds) {
  constexpr double kLongest = 24 * 86400.0;
  return static_cast<int>(std::ceil(std::clamp(seconds, 0.0, kLongest) * 1000));
}

}  // namespace

/// Gets tasks to the loop's thread; what is still on its way when the loop is destroyed is dropped.
class QtExecutor::Loop {
 public:
  void post(Task task) { QMetaObject::invokeMethod(&receiver_, std::move(task), Qt::QueuedConnection); }
  [[nodiscard]] bool isHere() const { return std::this_thread::get_id() == thread_; }

 private:
  QObject receiver_;
  const std::thread::id thread_ = std::this_thread::get_id();
};

/// Everything but `end()` for the loop's thread.
class QtExecutor::Timer {
 public:
  Timer(double interval, Task task) : interval_(interval), task_(std::move(task)) {}

  void begin(const std::shared_ptr<Timer>& self, double first) {
    if (ended) return;
    timer_ = std::make_unique<QTimer>();
    timer_->setTimerType(Qt::PreciseTimer);
    timer_->setSingleShot(interval_ <= 0);
    // What was missed while the machine slept is not made up: Qt counts on from now.
    QObject::connect(timer_.get(), &QTimer::timeout, [weak = std::weak_ptr(self)] {
      if (const auto strong = weak.lock()) strong->fire();
    });
    timer_->start(toMilliseconds(first));
  }
  /// The object may be what calls, so it goes with the next turn of the loop.
  void release() {
    if (!timer_) return;
    timer_->stop();
    timer_.release()->deleteLater();
  }

  std::atomic<bool> ended{false};

 private:
  void fire() {
    const int interval = toMilliseconds(interval_);
    if (interval_ > 0 && timer_->interval() != interval) timer_->setInterval(std::max(interval, 1));
    if (!ended) task_();
  }

  const double interval_;
  const Task task_;
  std::unique_ptr<QTimer> timer_;
};

class QtExecutor::Watch {
 public:
  Watch(UniqueDescriptor descriptor, Task task)
      : descriptor_(std::move(descriptor)), task_(std::move(task)) {}

  void begin(const std::shared_ptr<Watch>& self, Readiness readiness) {
    notifier_ = std::make_unique<QSocketNotifier>(
        descriptor_.get(), readiness == Readiness::readable ? QSocketNotifier::Read : QSocketNotifier::Write);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [weak = std::weak_ptr(self)] {
      const auto strong = weak.lock();
      if (strong && !strong->ended) strong->task_();
    });
  }
  void release() {
    if (!notifier_) return;
    notifier_->setEnabled(false);
    notifier_.release()->deleteLater();
    descriptor_.reset();
  }

  std::atomic<bool> ended{false};

 private:
  UniqueDescriptor descriptor_;
  const Task task_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

/// Owns a timer or watch. Qt's objects may be touched on their own thread only, elsewhere the loop is asked.
template <typename Object>
class QtExecutor::LoopRegistration final : public Registration {
 public:
  LoopRegistration(std::weak_ptr<Loop> loop, std::shared_ptr<Object> object)
      : loop_(std::move(loop)), object_(std::move(object)) {}
  ~LoopRegistration() override {
    object_->ended = true;
    const auto loop = loop_.lock();
    if (!loop) return;
    if (loop->isHere()) {
      object_->release();
    } else {
      loop->post([object = std::move(object_)] { object->release(); });
    }
  }

 private:
  const std::weak_ptr<Loop> loop_;
  std::shared_ptr<Object> object_;
};

QtExecutor::QtExecutor() : loop_(std::make_shared<Loop>()) {}
QtExecutor::~QtExecutor() = default;

void QtExecutor::post(Task task) {
  loop_->post(std::move(task));
}

RegistrationPtr QtExecutor::after(double delaySeconds, Task task) {
  return repeat(delaySeconds, 0, std::move(task));
}

RegistrationPtr QtExecutor::repeat(double firstSeconds, double intervalSeconds, Task task) {
  auto timer = std::make_shared<Timer>(intervalSeconds, std::move(task));
  if (loop_->isHere()) {
    timer->begin(timer, firstSeconds);
  } else {
    loop_->post([timer, firstSeconds] { timer->begin(timer, firstSeconds); });
  }
  return std::make_unique<LoopRegistration<Timer>>(loop_, std::move(timer));
}

RegistrationPtr QtExecutor::watch(int descriptor, Readiness readiness, Task task) {
  // A duplicate, so that one descriptor can be watched for both directions and closed at any time.
  UniqueDescriptor duplicate(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
  if (!duplicate) return nullptr;
  setNonBlocking(duplicate.get(), true);
  auto watch = std::make_shared<Watch>(std::move(duplicate), std::move(task));
  watch->begin(watch, readiness);
  return std::make_unique<LoopRegistration<Watch>>(loop_, std::move(watch));
}

void QtMainLoop::run() {
  QCoreApplication::exec();
}

void QtMainLoop::stop() {
  QCoreApplication::exit(0);
}

}  // namespace kestrel
