#pragma once

#include <memory>
#include <string>

#include "KestrelApp/HeadlessStatusLine.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

class SoleInstance;

/// Kestrel without a display: a status line on standard output, until a signal ends it.
class HeadlessApplication {
 public:
  HeadlessApplication(Directories directories, std::string ownPath);
  ~HeadlessApplication();

  /// Before `run()`: it takes the place of an application with windows whose display was lost. Goes on with
  /// the sessions in the pipe, and makes room when Kestrel is started again.
  void standIn(UniqueDescriptor sessions);
  /// The whole life of the program; returns its exit status.
  int run();

 private:
  void printHints() const;

  const std::string ownPath_;
  const std::shared_ptr<const Clock> clock_;
  const std::shared_ptr<HeadlessStatusLine> statusLine_;
  const std::unique_ptr<SoleInstance> instance_;
  bool standsIn_ = false;
};

}  // namespace kestrel
