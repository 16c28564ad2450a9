#include "KestrelCore/Presentation/AgentInspection.h"

#include <system_error>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

constexpr const char* kRelay = "kestrel-relay";

std::unique_ptr<AgentRegistry> registryFor(const AdapterEnvironment& environment) {
  auto registry = std::make_unique<AgentRegistry>(environment);
  registry->registerDefaultAdapters();
  return registry;
}

std::optional<std::string> findRelay(const AdapterEnvironment& environment,
                                     const std::filesystem::path& programFolder) {
  std::error_code error;
  std::optional<std::filesystem::path> relay = programFolder / kRelay;
  const bool isBeside =
      std::filesystem::is_regular_file(*relay, error) && ::access(relay->c_str(), X_OK) == 0;
  if (!isBeside) relay = AgentInspector(environment).findExecutable(kRelay);
  return relay && isUtf8(relay->native()) ? std::optional(relay->native()) : std::nullopt;
}

}  // namespace

AgentInspection::AgentInspection(AdapterEnvironment environment, const std::filesystem::path& programFolder,
                                 Executor& mainExecutor, std::shared_ptr<const Clock> clock)
    : environment_(std::move(environment)),
      mainExecutor_(mainExecutor),
      clock_(std::move(clock)),
      registry_(registryFor(environment_)),
      relayPath_(findRelay(environment_, programFolder)) {}

void AgentInspection::check(std::set<AgentType> seen) {
  if (isChecking_.get()) return;
  isChecking_.set(true);
  if (!worker_) worker_ = std::make_unique<SerialQueue>("com.kestrel.inspection");
  AdapterEnvironment environment = environment_;
  environment.isRunning = [seen = std::move(seen)](AgentType agent) { return seen.contains(agent); };
  worker_->post([this, alive = std::weak_ptr(alive_), environment = std::move(environment)] {
    const Result result{clock_->now(), registryFor(environment)->detectAll()};
    mainExecutor_.post([this, alive, result] {
      if (alive.expired()) return;
      result_.set(result);
      isChecking_.set(false);
    });
  });
}

void AgentInspection::checkOnce(const std::set<AgentType>& seen) {
  if (!result_.get()) check(seen);
}

}  // namespace kestrel
