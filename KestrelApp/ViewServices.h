#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "KestrelApp/ViewContext.h"
#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Presentation/AgentInspection.h"
#include "KestrelCore/Presentation/DismissedAlerts.h"
#include "KestrelCore/Presentation/ExportToFile.h"
#include "KestrelCore/Presentation/OnboardingTrial.h"
#include "KestrelCore/Support/LocalCalendar.h"

namespace kestrel {

/// What the windows share beyond the coordinator, made with the first of them. Main thread.
class ViewServices {
 public:
  struct Dependencies {
    AppCoordinator& coordinator;
    Executor& mainExecutor;
    std::shared_ptr<const Clock> clock;
    std::shared_ptr<LogSink> logSink;
    /// Where this program stands.
    std::filesystem::path programFolder;
  };

  /// Coordinator and executor outlive this object.
  explicit ViewServices(const Dependencies& dependencies);

  [[nodiscard]] ViewContext& context() { return context_; }

 private:
  AgentInspection inspection_;
  OnboardingTrial trial_;
  ExportToFile exporter_;
  const SystemLocalCalendar calendar_;
  DismissedAlerts dismissed_;
  ViewContext context_;
};

}  // namespace kestrel
