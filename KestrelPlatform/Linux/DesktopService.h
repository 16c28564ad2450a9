#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "KestrelPlatform/Linux/InhibitorService.h"

namespace kestrel {

/// One of the desktop's own inhibition services. A grant is a cookie, which the service forgets when it ends
/// or when our connection does.
class DesktopService final : public InhibitorService {
 public:
  /// How a family of desktops spells the calls.
  struct Dialect {
    const char* title;
    const char* service;
    const char* path;
    const char* interface;
    const char* giveBack;
    /// The call that tells whether anything is inhibited; null where there is none, and a cookie counts as
    /// shown as long as the service lives.
    const char* readBack;
    /// Whether calls say by flags what to inhibit.
    bool hasFlags;
  };
  static const Dialect kSessionManager;
  static const Dialect kPowerManagement;
  static const Dialect kScreenSaver;

  DesktopService(const Dialect& dialect, BusLink& link, std::function<void()> onPresence);

  [[nodiscard]] const std::string& title() const override { return title_; }
  [[nodiscard]] Presence presence() const override { return name_.presence(); }
  [[nodiscard]] std::string absence() const override;
  [[nodiscard]] unsigned generation() const override { return name_.generation(); }
  [[nodiscard]] bool remembersGrants() const override { return false; }
  void take(HoldKind kind, const std::string& reason, AnswerHandler handler) override;
  void readBack(HoldKind kind, const std::string& reason, ReadBackHandler handler) override;

 private:
  class Cookie;

  [[nodiscard]] BusMessage newCall(const char* member);
  void giveBack(std::uint32_t cookie, unsigned generation);

  const Dialect& dialect_;
  const std::string title_;
  BusLink& link_;
  BusName name_;
};

}  // namespace kestrel
