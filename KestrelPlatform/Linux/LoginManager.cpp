#include "KestrelPlatform/Linux/LoginManager.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelPlatform/Linux/BusText.h"

namespace kestrel {
namespace {

constexpr const char* kService = "org.freedesktop.login1";
constexpr const char* kPath = "/org/freedesktop/login1";
constexpr const char* kInterface = "org.freedesktop.login1.Manager";
constexpr const char* kActivityRule =
    "type='signal',sender='org.freedesktop.login1',path='/org/freedesktop/login1',"
    "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',arg0='org.freedesktop.login1."
    "Manager'";
/// The authorisation service may have to be started first.
constexpr double kTakeTimeoutSeconds = 25;
constexpr double kListTimeoutSeconds = 5;

class DescriptorGrant final : public InhibitorService::Grant {
 public:
  explicit DescriptorGrant(int descriptor) : descriptor_(descriptor) {}

 private:
  UniqueDescriptor descriptor_;
};

/// What the service calls a kind of hold.
std::string_view nameOf(HoldKind kind) {
  return kind == HoldKind::lid ? "handle-lid-switch" : rawValue(kind);
}

InhibitorService::Answer readGrant(const BusReply& reply) {
  if (reply.message == nullptr) return {nullptr, reply.failure};
  int borrowed = -1;
  int status = sd_bus_message_read(reply.message, "h", &borrowed);
  if (status < 0) return {nullptr, busErrorText(status)};
  const int descriptor = ::fcntl(borrowed, F_DUPFD_CLOEXEC, 3);
  if (descriptor < 0) return {nullptr, busErrorText(-errno)};
  return {std::make_unique<DescriptorGrant>(descriptor), {}};
}

}  // namespace

/// One row of the service's list. A reason in other than ASCII characters comes back garbled from the records
/// of a restarted service (seen with version 252): that row is not ours, and taking anew puts it right.
struct LoginManager::Inhibitor {
  const char* what = nullptr;
  const char* who = nullptr;
  const char* why = nullptr;
  const char* mode = nullptr;
  std::uint32_t user = 0;
  std::uint32_t process = 0;

  [[nodiscard]] bool isOurs(HoldKind kind, const std::string& reason) const {
    return nameOf(kind) == what && reason == why && who == std::string_view(kInhibitorName) &&
           mode == std::string_view("block") && user == ::geteuid() &&
           process == static_cast<std::uint32_t>(::getpid());
  }
};

LoginManager::LoginManager(BusLink& link, std::function<void()> onPresence, std::function<void()> onActivity)
    : link_(link),
      onPresence_(std::move(onPresence)),
      onActivity_(std::move(onActivity)),
      linkObserver_(link.observe([this] { followActivity(); })),
      name_(link, kService, [this] { followName(); }) {
  followActivity();
}

std::string LoginManager::absence() const {
  return link_.bus() == nullptr ? link_.problem() : title_ + " is not running";
}

void LoginManager::followName() {
  questions_.clear();
  listing_ = false;
  onPresence_();
}

/// Of the properties that are signalled, the blocking inhibitors and the idle hint, both are a reason to
/// look.
void LoginManager::followActivity() {
  if (link_.bus() != nullptr) link_.bus()->match(kActivityRule, [this](sd_bus_message*) { onActivity_(); });
}

void LoginManager::take(HoldKind kind, const std::string& reason, AnswerHandler handler) {
  if (link_.bus() == nullptr) return;
  auto call = link_.bus()->newCall(kService, kPath, kInterface, "Inhibit");
  call.append("ssss", std::string(nameOf(kind)).c_str(), kInhibitorName, reason.c_str(), "block");
  link_.bus()->call(call, kTakeTimeoutSeconds,
                    [handler = std::move(handler)](const BusReply& reply) { handler(readGrant(reply)); });
}

void LoginManager::readBack(HoldKind kind, const std::string& reason, ReadBackHandler handler) {
  questions_.push_back({kind, reason, std::move(handler)});
  if (!listing_) list();
}

void LoginManager::list() {
  if (link_.bus() == nullptr) return;
  listing_ = true;
  const auto call = link_.bus()->newCall(kService, kPath, kInterface, "ListInhibitors");
  link_.bus()->call(
      call, kListTimeoutSeconds,
      [this, asked = std::exchange(questions_, {}), asker = generation()](const BusReply& reply) {
        if (asker != generation() || !listing_) return;  // The service changed meanwhile.
        listing_ = false;
        answerAll(asked, reply);
        if (!questions_.empty() && !listing_) list();
      });
}

void LoginManager::answerAll(std::vector<Question> questions, const BusReply& reply) {
  std::vector<std::optional<bool>> shown(questions.size());
  if (reply.message != nullptr && sd_bus_message_enter_container(reply.message, 'a', "(ssssuu)") > 0) {
    shown.assign(questions.size(), false);
    Inhibitor row;
    while (sd_bus_message_read(reply.message, "(ssssuu)", &row.what, &row.who, &row.why, &row.mode, &row.user,
                               &row.process) > 0) {
      for (std::size_t i = 0; i < questions.size(); ++i) {
        if (row.isOurs(questions[i].kind, questions[i].reason)) shown[i] = true;
      }
    }
  }
  for (std::size_t i = 0; i < questions.size(); ++i) questions[i].handler(shown[i]);
}

}  // namespace kestrel
