#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelPlatform/Linux/BusName.h"

namespace kestrel {

/// A service that can keep the machine awake on request. Main thread only; it outlives its grants.
class InhibitorService {
 public:
  using Presence = BusName::Presence;

  /// What the service granted. Destroying it gives it back.
  class Grant {
   public:
    virtual ~Grant() = default;
  };
  /// The grant, or the refusal in words. An answer that nobody takes gives itself back.
  struct Answer {
    std::unique_ptr<Grant> grant;
    std::string refusal;
  };
  using AnswerHandler = std::function<void(Answer)>;
  /// Whether the service shows what it was asked for; absent when it could not be asked.
  using ReadBackHandler = std::function<void(std::optional<bool>)>;

  virtual ~InhibitorService() = default;

  /// The service as people know it.
  [[nodiscard]] virtual const std::string& title() const = 0;
  [[nodiscard]] virtual Presence presence() const = 0;
  /// While it is absent: why, in words.
  [[nodiscard]] virtual std::string absence() const = 0;
  /// Changes whenever another process answers, or the same one on another connection; 0 until one did.
  [[nodiscard]] virtual unsigned generation() const = 0;
  /// Whether a new process of the service may still know what an earlier one granted.
  [[nodiscard]] virtual bool remembersGrants() const = 0;

  /// Asks for a hold of a kind, to be shown with this reason. The handler is called once, later; not at all
  /// when the connection or the service is lost first.
  virtual void take(HoldKind kind, const std::string& reason, AnswerHandler handler) = 0;
  /// Asks whether such a hold of this process shows now. Called back as for `take`, but perhaps at once.
  virtual void readBack(HoldKind kind, const std::string& reason, ReadBackHandler handler) = 0;
};

/// The name that every service is shown.
inline constexpr const char* kInhibitorName = "Kestrel";

}  // namespace kestrel
