#include "KestrelApp/DisplayGuard.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <utility>

namespace kestrel {
namespace {

struct Handlers {
  Logger logger;
  std::function<void()> onDisplayLost;
};

/// All that Qt's message handler and the end of the process can reach. Stays when the guard goes: another
/// thread of Qt may be speaking.
std::atomic<const Handlers*> handlers{nullptr};

enum class Watch { off, armed, leaving };
std::atomic<Watch> watch{Watch::off};

void goOnWithoutDisplay() {
  // Only once: the callback may itself end the process.
  thread_local bool isLeaving = false;
  Watch seen = Watch::armed;
  if (watch.compare_exchange_strong(seen, Watch::leaving)) {
    isLeaving = true;
    handlers.load()->onDisplayLost();
    watch = Watch::off;
    watch.notify_all();
  } else if (seen == Watch::leaving && !isLeaving) {
    // Several of Qt's threads notice the loss, and the caller ends the process when this returns.
    watch.wait(Watch::leaving);
  }
}

/// Qt says this and then ends the process; its Wayland client by _exit, which runs no exit handlers.
bool tellsOfTheEnd(const QString& message) {
  return message.startsWith(QLatin1String("The Wayland connection ")) ||
         message.startsWith(QLatin1String("The X11 connection broke"));
}

void takeMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
  const Logger& logger = handlers.load()->logger;
  const QByteArray text = message.toUtf8();
  if (type == QtDebugMsg) {
    logger.debug("{}", text.constData());
  } else if (type == QtInfoMsg) {
    logger.info("{}", text.constData());
  } else {
    logger.error("{}", text.constData());
  }
  if (type == QtFatalMsg || tellsOfTheEnd(message)) goOnWithoutDisplay();
}

}  // namespace

DisplayGuard::DisplayGuard(Logger logger, std::function<void()> onDisplayLost) {
  static const bool isRegistered = std::atexit(&goOnWithoutDisplay) == 0;
  if (!isRegistered) logger.error("The end of the display cannot be noticed: no exit handler is free");
  handlers = new Handlers{std::move(logger), std::move(onDisplayLost)};
  watch = Watch::armed;
  qInstallMessageHandler(&takeMessage);
}

DisplayGuard::~DisplayGuard() {
  watch = Watch::off;
  qInstallMessageHandler(nullptr);
}

}  // namespace kestrel
