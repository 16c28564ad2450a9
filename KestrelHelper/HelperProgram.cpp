#include "KestrelHelper/HelperProgram.h"

#include <cstdio>
#include <system_error>
#include <utility>

#include "KestrelCore/Support/InstanceLock.h"
#include "KestrelCore/Support/RepeatLimitingLogSink.h"
#include "KestrelCore/Support/TerminationSignals.h"
#include "KestrelCore/Support/UnixSocketServer.h"
#include "KestrelHelper/HelperService.h"

namespace kestrel {
namespace {

std::string reasonOf(const UnixSocketServer::StartFailure& failure) {
  if (failure.step == UnixSocketServer::Step::policy) return "it may not be written";
  if (failure.step == UnixSocketServer::Step::pathTooLong) return "the path is too long";
  return std::generic_category().message(failure.code);
}

}  // namespace

HelperProgram::HelperProgram(HelperPlaces places)
    : places_(std::move(places)),
      clock_(std::make_shared<SystemClock>()),
      logSink_(std::make_shared<RepeatLimitingLogSink>(makeLogSink(true), clock_)),
      writePolicy_(std::make_shared<KestrelWritePolicy>(places_.directories, logSink_)),
      files_(std::make_shared<AtomicFileWriter>(writePolicy_, Logger(logSink_, "files", kHelperSubsystem))) {}

int HelperProgram::run() {
  InstanceLock lock;
  switch (lock.acquire(places_.lockFile, *files_)) {
    case InstanceLock::Outcome::acquired:
      return serve();
    case InstanceLock::Outcome::heldByAnother:
      std::puts("kestrel-helper is already running.");
      return 0;
    case InstanceLock::Outcome::failed:
      break;
  }
  std::fprintf(stderr, "kestrel-helper cannot start: its lock file %s cannot be used.\n",
               places_.lockFile.c_str());
  return 1;
}

int HelperProgram::serve() {
  const Logger logger(logSink_, "helper", kHelperSubsystem);
  const auto loop = makeMainLoop();
  Executor& executor = loop->executor();
  const TerminationSignals signals(executor, [&] { loop->stop(); });
  const HelperPlatform platform =
      makeHelperPlatform({executor, logSink_, clock_, files_, places_.directories});
  DeepHoldLeaseStore store(*platform.sleepOverride, DeepHoldLeaseStore::StateFile{places_.stateFile, files_},
                           clock_, logSink_);
  bool isUninstalled = false;
  HelperService service({platform, store, executor, clock_, logSink_}, [&] {
    isUninstalled = true;
    loop->stop();
  });
  UnixSocketServer server(executor, places_.socket,
                          HelperService::protocol(places_.isSystemWide ? platform.seat : nullptr),
                          platform.peerIdentity, writePolicy_, logger,
                          [&](std::string_view request) { return service.answer(request); });
  service.start();
  const auto failure = server.start();
  if (failure) {
    logger.error("Cannot serve {}: {} ({})", places_.socket.string(), reasonOf(*failure), failure->code);
  } else {
    logger.info("Serving {}", places_.socket.string());
    loop->run();
  }
  service.stop();
  if (isUninstalled) {
    (void)files_->remove(places_.stateFile);
    (void)files_->remove(places_.lockFile);
  }
  return failure ? 1 : 0;
}

}  // namespace kestrel
