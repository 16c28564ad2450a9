#pragma once

#include <memory>
#include <optional>
#include <string>

#include "KestrelApp/HeadlessStatusLine.h"
#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Control/ControlServer.h"
#include "KestrelCore/Control/ControlService.h"
#include "KestrelCore/Platform/Platform.h"
#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/InstanceLock.h"
#include "KestrelCore/Support/TerminationSignals.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

/// Kestrel without a display: a status line on standard output, until a signal ends it. Members stand in the
/// order in which they are built and, backwards, released.
class HeadlessApplication {
 public:
  HeadlessApplication(Directories directories, std::string ownPath);
  ~HeadlessApplication();

  /// The whole life of the program; returns its exit status.
  int run();

 private:
  int runAsOnlyInstance();
  int deferToRunningInstance();
  /// At a signal: releases everything, then ends the loop.
  void end();
  void printHints() const;

  const Directories directories_;
  const std::string ownPath_;
  const std::shared_ptr<const Clock> clock_;
  const std::shared_ptr<HeadlessStatusLine> statusLine_;
  const std::shared_ptr<LogSink> logSink_;
  const std::shared_ptr<const KestrelWritePolicy> writePolicy_;
  const std::shared_ptr<const AtomicFileWriter> files_;
  const std::unique_ptr<MainLoop> loop_;
  const TerminationSignals signals_;
  InstanceLock lock_;
  /// While it is started; owned by `runAsOnlyInstance`.
  AppCoordinator* coordinator_ = nullptr;
  RegistrationPtr deadline_;
};

}  // namespace kestrel
