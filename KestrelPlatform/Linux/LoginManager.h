#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "KestrelPlatform/Linux/InhibitorService.h"

namespace kestrel {

/// The login manager's block inhibitors. A grant is a descriptor, so it ends with this process, whatever
/// happens; its records outlive a restart of the service.
class LoginManager final : public InhibitorService {
 public:
  /// `onPresence` is called after the service came or went, `onActivity` after it said that its inhibitors
  /// changed.
  LoginManager(BusLink& link, std::function<void()> onPresence, std::function<void()> onActivity);

  [[nodiscard]] const std::string& title() const override { return title_; }
  [[nodiscard]] Presence presence() const override { return name_.presence(); }
  [[nodiscard]] std::string absence() const override;
  [[nodiscard]] unsigned generation() const override { return name_.generation(); }
  [[nodiscard]] bool remembersGrants() const override { return true; }
  void take(HoldKind kind, const std::string& reason, AnswerHandler handler) override;
  void readBack(HoldKind kind, const std::string& reason, ReadBackHandler handler) override;

 private:
  struct Question {
    HoldKind kind;
    std::string reason;
    ReadBackHandler handler;
  };
  struct Inhibitor;

  void followName();
  void followActivity();
  void list();
  void answerAll(std::vector<Question> questions, const BusReply& reply);

  const std::string title_ = "login manager";
  BusLink& link_;
  const std::function<void()> onPresence_;
  const std::function<void()> onActivity_;
  /// Asked since the listing under way was sent: that one may be older than what they ask about.
  std::vector<Question> questions_;
  bool listing_ = false;
  RegistrationPtr linkObserver_;
  BusName name_;
};

}  // namespace kestrel
