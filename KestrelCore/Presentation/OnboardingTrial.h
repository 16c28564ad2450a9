#pragma once

#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Published.h"
#include "KestrelCore/Support/SerialQueue.h"

namespace kestrel {

class AppCoordinator;

/// Proves to a person that all of it works: sends an event to Kestrel's own hook socket, as an agent's hook
/// does, and watches for the hold. The session that it makes ends by itself. Main thread.
class OnboardingTrial {
 public:
  enum class Step {
    notTried,
    /// The event is on its way.
    sending,
    /// Kestrel took it, and the hold is not in force yet.
    accepted,
    /// The system confirmed the hold.
    held,
    /// Kestrel took it, but may not hold: it is paused, switched off or blocked.
    blocked,
    /// Kestrel took it, and the hold was not confirmed in time.
    notConfirmed,
    /// The socket did not take it.
    failed
  };
  struct Report {
    Step step = Step::notTried;
    /// Why it failed or is blocked, or who holds; may be empty.
    std::string detail;
    /// Seconds from the press of the button until the hold was in force.
    std::optional<double> holdAfterSeconds{};

    friend bool operator==(const Report&, const Report&) = default;
  };

  /// How long the system has to confirm, and after which the session ends; in seconds.
  static constexpr double kPatienceSeconds = 10;

  /// Both outlive this object.
  OnboardingTrial(AppCoordinator& coordinator, Executor& mainExecutor);
  /// Ends the session.
  ~OnboardingTrial();
  OnboardingTrial(const OnboardingTrial&) = delete;
  OnboardingTrial& operator=(const OnboardingTrial&) = delete;

  /// Begins; nothing while one is under way.
  void start();
  [[nodiscard]] const Published<Report>& report() const { return report_; }
  [[nodiscard]] bool isUnderWay() const;

 private:
  void giveUp();
  void onReply(const std::optional<std::string>& failure);
  void look();
  void endSession();

  AppCoordinator& coordinator_;
  Executor& mainExecutor_;
  Published<Report> report_;
  Date startedAt_;
  bool hasSession_ = false;
  RegistrationPtr evaluations_;
  RegistrationPtr deadline_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
  /// Made for the first trial. Last, so that its thread has ended before anything it uses goes.
  std::unique_ptr<SerialQueue> worker_;
};

}  // namespace kestrel
