#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>
#include <utility>
#include <vector>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

struct SdBusRelease {
  void operator()(sd_bus* bus) const;
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
  void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

/// A call being put together. A part that could not be added makes the call fail.
class BusMessage {
 public:
  explicit BusMessage(sd_bus_message* owned, int status = 0) : message_(owned), status_(status) {}

  /// Arguments by their D-Bus types: "s" const char*, "u" std::uint32_t.
  template <typename... Arguments>
  BusMessage& append(const char* types, Arguments... arguments) {
    if (status_ >= 0) status_ = sd_bus_message_append(message_.get(), types, arguments...);
    return *this;
  }
  [[nodiscard]] sd_bus_message* get() const { return message_.get(); }
  /// Negative errno when the message cannot be sent.
  [[nodiscard]] int status() const { return status_; }

 private:
  std::unique_ptr<sd_bus_message, SdBusRelease> message_;
  int status_;
};

/// An answer, or the reason for there being none. Lives during its handler only.
struct BusReply {
  /// To be read with sd_bus_message_read and its kin; null when the call failed.
  sd_bus_message* message = nullptr;
  /// The failure in words.
  std::string failure;
  /// The failure's D-Bus name; may be empty.
  std::string errorName;
};

/// One connection to a message bus on an executor. Never blocks. For the executor's thread only, and not to
/// be destroyed from one of its own handlers. Destruction closes the connection and forgets unanswered calls.
class SdBus {
 public:
  enum class Which { system, session };
  using ReplyHandler = std::function<void(const BusReply&)>;
  using SignalHandler = std::function<void(sd_bus_message*)>;

  /// Begins to connect to the address that the environment names. Null when that fails at once, with the
  /// negative errno in `error`. `onFailure` is called once, later and in words, when the connection is lost.
  static std::unique_ptr<SdBus> open(Which which, Executor& executor,
                                     std::function<void(const std::string&)> onFailure, int& error);
  ~SdBus();
  SdBus(const SdBus&) = delete;
  SdBus& operator=(const SdBus&) = delete;

  /// Whether the bus has let us in.
  [[nodiscard]] bool isReady() const { return sd_bus_is_ready(bus_.get()) > 0; }
  /// A call that never starts the service.
  [[nodiscard]] BusMessage newCall(const char* destination, const char* path, const char* interface,
                                   const char* member);
  /// The handler is called exactly once, later, unless this object is destroyed first.
  void call(const BusMessage& message, double timeoutSeconds, ReplyHandler handler);
  /// Sends and wants no answer.
  void send(const BusMessage& message);
  /// Calls the handler for every signal that a match rule lets through, as long as the connection lasts.
  void match(const std::string& rule, SignalHandler handler);

 private:
  struct Match;

  SdBus(sd_bus* bus, Executor& executor, std::function<void(const std::string&)> onFailure);
  void watchSocket();
  void pump();
  void arm();
  void armTimer(std::uint64_t deadline);
  void fail(int error);

  Executor& executor_;
  std::function<void(const std::string&)> onFailure_;
  std::unique_ptr<sd_bus, SdBusRelease> bus_;
  std::vector<std::unique_ptr<Match>> matches_;
  RegistrationPtr readable_;
  RegistrationPtr writable_;
  RegistrationPtr timer_;
  /// When the timer fires, in microseconds of the monotonic clock.
  std::uint64_t deadline_ = UINT64_MAX;
  bool processing_ = false;
  bool failed_ = false;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
};

}  // namespace kestrel
