#include "KestrelApp/ViewServices.h"

#include <cstdlib>

#include "KestrelCore/AppCoordinator.h"

namespace kestrel {
namespace {

AdapterEnvironment environmentOf(const ViewServices::Dependencies& dependencies) {
  const char* searchPath = std::getenv("PATH");
  AdapterEnvironment environment;
  environment.home = dependencies.coordinator.directories().home;
  environment.searchPath = searchPath == nullptr ? "" : searchPath;
  environment.logSink = dependencies.logSink;
  return environment;
}

}  // namespace

ViewServices::ViewServices(const Dependencies& dependencies)
    : inspection_(environmentOf(dependencies), dependencies.programFolder, dependencies.mainExecutor,
                  dependencies.clock),
      trial_(dependencies.coordinator, dependencies.mainExecutor),
      exporter_(dependencies.coordinator.files(), dependencies.mainExecutor),
      context_{dependencies.coordinator,
               dependencies.mainExecutor,
               inspection_,
               trial_,
               exporter_,
               calendar_,
               dismissed_,
               {}} {}

}  // namespace kestrel
