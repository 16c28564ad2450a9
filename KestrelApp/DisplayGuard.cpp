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
std::atomic<bool> isArmed{false};

void goOnWithoutDisplay() {
  // Only once: the callback may itself end the process.
  if (isArmed.exchange(false)) handlers.load()->onDisplayLost();
}

/// Qt's Wayland client says this and calls _exit, which runs no exit handlers.
bool tellsOfTheEnd(const QString& message) {
  return message.startsWith(QLatin1String("The Wayland connection "));
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
  isArmed = true;
  qInstallMessageHandler(&takeMessage);
}

DisplayGuard::~DisplayGuard() {
  isArmed = false;
  qInstallMessageHandler(nullptr);
}

}  // namespace kestrel
