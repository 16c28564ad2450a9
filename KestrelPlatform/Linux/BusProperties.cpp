#include "KestrelPlatform/Linux/BusProperties.h"

#include <algorithm>
#include <utility>

#include "KestrelPlatform/Linux/BusText.h"

namespace kestrel {
namespace {

constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr double kTimeoutSeconds = 5;
constexpr double kSettleSeconds = 0.25;
/// A service may own its name before it has its objects.
constexpr double kFirstRetrySeconds = 1;
constexpr double kLongestRetrySeconds = 30;

std::optional<BusValues> readAnswer(const BusProperties::Object& object, const BusReply& reply) {
  if (object.property.empty()) return readBusDictionary(reply.message);
  int status = 0;
  BusValues values;
  if (auto value = readBusVariant(reply.message, status)) values.emplace(object.property, std::move(*value));
  return status < 0 ? std::nullopt : std::optional(std::move(values));
}

}  // namespace

BusProperties::BusProperties(BusLink& link, Executor& executor, Logger logger, std::string title,
                             std::string service, std::vector<Object> objects,
                             std::function<bool(const Objects&)> isUsable, std::function<void()> onChange)
    : link_(link),
      executor_(executor),
      logger_(std::move(logger)),
      title_(std::move(title)),
      objects_(std::move(objects)),
      isUsable_(std::move(isUsable)),
      onChange_(std::move(onChange)),
      retryDelay_(kFirstRetrySeconds),
      linkObserver_(link.observe([this] { followLink(); })),
      name_(link, std::move(service), [this] { followName(); }) {
  followLink();
}

void BusProperties::followLink() {
  if (link_.bus() == nullptr) return;
  for (const Object& each : objects_) {
    link_.bus()->match("type='signal',sender='" + name_.name() + "',path='" + each.path + "',interface='" +
                           kProperties + "',member='PropertiesChanged',arg0='" + each.interface + "'",
                       [this](sd_bus_message*) { readSoon(); });
  }
}

void BusProperties::followName() {
  forget();
  if (name_.presence() == BusName::Presence::present) read();
}

void BusProperties::forget() {
  ++reading_;
  unanswered_ = 0;
  timer_.reset();
  retry_.reset();
  retryDelay_ = kFirstRetrySeconds;
  if (std::exchange(values_, std::nullopt)) onChange_();
}

/// Signals that come before it is time change nothing, so that no stream of them puts the reading off.
void BusProperties::readSoon() {
  changedMeanwhile_ = true;
  if (unanswered_ > 0 || timer_) return;
  timer_ = executor_.after(kSettleSeconds, [this] { read(); });
}

void BusProperties::read() {
  if (name_.presence() != BusName::Presence::present || unanswered_ > 0) return;
  timer_.reset();
  retry_.reset();
  changedMeanwhile_ = false;
  problem_.clear();
  ++reading_;
  answers_.assign(objects_.size(), {});
  unanswered_ = objects_.size();
  for (std::size_t i = 0; i < objects_.size(); ++i) ask(i);
}

void BusProperties::ask(std::size_t index) {
  const Object& object = objects_[index];
  const bool all = object.property.empty();
  auto call =
      link_.bus()->newCall(name_.name().c_str(), object.path.c_str(), kProperties, all ? "GetAll" : "Get");
  call.append("s", object.interface.c_str());
  if (!all) call.append("s", object.property.c_str());
  link_.bus()->call(call, kTimeoutSeconds, [this, index, reading = reading_](const BusReply& reply) {
    if (reading == reading_) take(index, reply);
  });
}

void BusProperties::take(std::size_t index, const BusReply& reply) {
  if (reply.message == nullptr) {
    problem_ = reply.failure;
  } else if (auto values = readAnswer(objects_[index], reply)) {
    answers_[index] = std::move(*values);
  }
  if (--unanswered_ == 0) finish();
}

void BusProperties::finish() {
  if (problem_.empty() && !isUsable_(answers_)) problem_ = "its answer is not understood";
  if (problem_.empty()) {
    values_ = std::move(answers_);
    retryDelay_ = kFirstRetrySeconds;
  } else {
    logger_.error("{} cannot be read: {}", title_, problem_);
    values_.reset();
    retry_ = executor_.after(retryDelay_, [this] { read(); });
    retryDelay_ = std::min(2 * retryDelay_, kLongestRetrySeconds);
  }
  if (changedMeanwhile_) readSoon();
  onChange_();
}

}  // namespace kestrel
