#include "KestrelPlatform/Linux/SdBus.h"

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <time.h>

#include "KestrelPlatform/Linux/BusText.h"

namespace kestrel {
namespace {

constexpr int kMessagesPerTurn = 64;

double secondsUntil(std::uint64_t monotonicMicroseconds) {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  const double seconds = static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
  const double delay = static_cast<double>(monotonicMicroseconds) / 1e6 - seconds;
  return delay > 0 ? delay : 0;
}

int deliverReply(sd_bus_message* message, void* userdata, sd_bus_error*) {
  const auto& handler = *static_cast<SdBus::ReplyHandler*>(userdata);
  if (const sd_bus_error* error = sd_bus_message_get_error(message)) {
    handler({nullptr, busErrorText(*error), error->name});
  } else {
    handler({message, {}, {}});
  }
  return 0;
}

void destroyHandler(void* userdata) {
  delete static_cast<SdBus::ReplyHandler*>(userdata);
}

}  // namespace

void SdBusRelease::operator()(sd_bus* bus) const {
  // Whoever still watches a duplicate of the descriptor must not keep the connection open.
  const int descriptor = sd_bus_get_fd(bus);
  if (descriptor >= 0) ::shutdown(descriptor, SHUT_RDWR);
  sd_bus_close_unref(bus);
}

struct SdBus::Match {
  SignalHandler handler;
  std::unique_ptr<sd_bus_slot, SdBusRelease> slot;
};

std::unique_ptr<SdBus> SdBus::open(Which which, Executor& executor,
                                   std::function<void(const std::string&)> onFailure, int& error) {
  sd_bus* bus = nullptr;
  error = which == Which::system ? sd_bus_open_system(&bus) : sd_bus_open_user(&bus);
  if (error < 0) return nullptr;
  std::unique_ptr<SdBus> result(new SdBus(bus, executor, std::move(onFailure)));
  result->watchSocket();
  return result;
}

SdBus::SdBus(sd_bus* bus, Executor& executor, std::function<void(const std::string&)> onFailure)
    : executor_(executor), onFailure_(std::move(onFailure)), bus_(bus) {}

SdBus::~SdBus() {
  readable_.reset();
  writable_.reset();
  timer_.reset();
  matches_.clear();
}

BusMessage SdBus::newCall(const char* destination, const char* path, const char* interface,
                          const char* member) {
  sd_bus_message* message = nullptr;
  int status = sd_bus_message_new_method_call(bus_.get(), &message, destination, path, interface, member);
  if (status >= 0) status = sd_bus_message_set_auto_start(message, 0);
  return BusMessage(message, status);
}

void SdBus::call(const BusMessage& message, double timeoutSeconds, ReplyHandler handler) {
  auto owned = std::make_unique<ReplyHandler>(std::move(handler));
  sd_bus_slot* slot = nullptr;
  int status = message.status();
  if (status >= 0) {
    status = sd_bus_call_async(bus_.get(), &slot, message.get(), deliverReply, owned.get(),
                               static_cast<std::uint64_t>(timeoutSeconds * 1e6));
  }
  if (status < 0) {
    executor_.post([alive = std::weak_ptr(alive_), handler = std::move(*owned), text = busErrorText(status)] {
      if (alive.lock()) handler({nullptr, text, {}});
    });
    return;
  }
  // From here the slot belongs to the connection, and the handler to the slot.
  sd_bus_slot_set_destroy_callback(slot, destroyHandler);
  static_cast<void>(owned.release());
  sd_bus_slot_set_floating(slot, 1);
  sd_bus_slot_unref(slot);
  arm();
}

void SdBus::send(const BusMessage& message) {
  if (message.status() < 0) return;
  sd_bus_message_set_expect_reply(message.get(), 0);
  sd_bus_send(bus_.get(), message.get(), nullptr);
  arm();
}

void SdBus::match(const std::string& rule, SignalHandler handler) {
  auto match = std::make_unique<Match>();
  match->handler = std::move(handler);
  const auto deliver = [](sd_bus_message* message, void* userdata, sd_bus_error*) {
    static_cast<Match*>(userdata)->handler(message);
    return 0;
  };
  sd_bus_slot* slot = nullptr;
  const int status = sd_bus_add_match_async(bus_.get(), &slot, rule.c_str(), deliver, nullptr, match.get());
  if (status < 0) return fail(status);
  match->slot.reset(slot);
  matches_.push_back(std::move(match));
  arm();
}

void SdBus::watchSocket() {
  const int descriptor = sd_bus_get_fd(bus_.get());
  if (descriptor < 0) return fail(descriptor);
  readable_ = executor_.watch(descriptor, Executor::Readiness::readable, [this] { pump(); });
  arm();
}

/// Handlers run in here; what they send is armed afterwards.
void SdBus::pump() {
  if (processing_ || failed_) return;
  processing_ = true;
  int result = 1;
  for (int i = 0; i < kMessagesPerTurn && result > 0; ++i) result = sd_bus_process(bus_.get(), nullptr);
  processing_ = false;
  if (result < 0) return fail(result);
  arm();
}

void SdBus::arm() {
  if (processing_ || failed_) return;
  const int events = sd_bus_get_events(bus_.get());
  std::uint64_t deadline = UINT64_MAX;
  const int status = sd_bus_get_timeout(bus_.get(), &deadline);
  if (events < 0 || status < 0) return fail(events < 0 ? events : status);
  if ((events & POLLOUT) == 0) {
    writable_.reset();
  } else if (!writable_) {
    writable_ = executor_.watch(sd_bus_get_fd(bus_.get()), Executor::Readiness::writable, [this] { pump(); });
  }
  armTimer(deadline);
}

void SdBus::armTimer(std::uint64_t deadline) {
  if (deadline == deadline_) return;
  deadline_ = deadline;
  timer_.reset();
  if (deadline == UINT64_MAX) return;
  timer_ = executor_.after(secondsUntil(deadline), [this] {
    deadline_ = UINT64_MAX;
    pump();
  });
}

void SdBus::fail(int error) {
  if (failed_) return;
  failed_ = true;
  readable_.reset();
  writable_.reset();
  timer_.reset();
  executor_.post([this, alive = std::weak_ptr(alive_), text = busErrorText(error)] {
    if (!alive.lock()) return;
    const auto onFailure = std::move(onFailure_);  // It may destroy this object.
    onFailure(text);
  });
}

}  // namespace kestrel
