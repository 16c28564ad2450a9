#include "KestrelApp/KestrelApp.h"

#include <QApplication>
#include <QByteArray>
#include <QSessionManager>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "KestrelApp/AppDelegate.h"
#include "KestrelApp/AppIcon.h"
#include "KestrelApp/AppViews.h"
#include "KestrelApp/ApplicationRuntime.h"
#include "KestrelApp/ApplicationTheme.h"
#include "KestrelApp/DisplayGuard.h"
#include "KestrelApp/KestrelBlobGlyphRenderer.h"
#include "KestrelApp/Launch.h"
#include "KestrelApp/QtExecutor.h"
#include "KestrelApp/SessionHandover.h"
#include "KestrelApp/StatusBarController.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/RepeatLimitingLogSink.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

constexpr const char* kSmallProgram = "kestrel";
constexpr const char* kRelay = "kestrel-relay";

/// Nothing here is drawn by a graphics processor, whose drivers would take more memory than all the rest.
void doWithoutGraphicsDrivers() {
  constexpr const char* kVariable = "QT_XCB_GL_INTEGRATION";
  if (!qEnvironmentVariableIsSet(kVariable)) qputenv(kVariable, "none");
}

std::optional<Theme::Scheme> schemeOf(std::optional<bool> prefersDark) {
  if (!prefersDark) return std::nullopt;
  return *prefersDark ? Theme::Scheme::dark : Theme::Scheme::light;
}

/// Where the programs that belong together stand.
std::filesystem::path programFolder() {
  if (const auto relay = companionProgram(kRelay)) return relay->parent_path();
  return QCoreApplication::applicationDirPath().toStdString();
}

}  // namespace

KestrelApp::KestrelApp(Directories directories, std::vector<std::string> arguments)
    : directories_(std::move(directories)), arguments_(std::move(arguments)) {}

int KestrelApp::run() {
  const auto clock = std::make_shared<SystemClock>();
  const auto logSink = std::make_shared<RepeatLimitingLogSink>(makeLogSink(true), clock);
  SoleInstance instance(directories_, clock, logSink);
  if (const auto status = instance.claim(SoleInstance::Manners::mayFollow)) return *status;

  const Logger logger(logSink, "desktop");
  std::optional<DisplayGuard> guard(std::in_place, logger, [this, logger] { goOnWithoutDisplay(logger); });
  doWithoutGraphicsDrivers();
  std::vector<char*> words;
  for (std::string& argument : arguments_) words.push_back(argument.data());
  int count = static_cast<int>(words.size());
  words.push_back(nullptr);
  QApplication application(count, words.data());
  runWindows(instance, logger);
  guard.reset();  // What is over needs no display.
  return 0;
}

void KestrelApp::goOnWithoutDisplay(const Logger& logger) const {
  ApplicationRuntime* const runtime = runtime_;
  if (runtime != nullptr && runtime->isEnding()) return;
  const auto program = companionProgram(kSmallProgram);
  if (!program) return logger.error("Cannot go on without a display: {} is not installed", kSmallProgram);
  logger.error("There is no display, or it was lost; going on without windows");
  const auto sessions = runtime == nullptr
                            ? UniqueDescriptor()
                            : handOverSessions(*runtime->coordinator().agentCoordinator().sessions());
  const std::string problem =
      replaceProcess(program->string(), commandWithoutDisplay(program->string(), sessions.get()));
  logger.error("Cannot go on without a display: {} cannot be run: {}", program->string(), problem);
}

void KestrelApp::runWindows(SoleInstance& instance, const Logger& logger) {
  becomeAccessory();
  QApplication::setApplicationName(QStringLiteral("kestrel"));
  QApplication::setApplicationDisplayName(QStringLiteral("Kestrel"));
  QApplication::setDesktopFileName(QStringLiteral("com.kestrel.app"));
  QApplication::setQuitOnLastWindowClosed(AppDelegate::applicationShouldTerminateAfterLastWindowClosed());

  ApplicationTheme theme(*qApp);
  QApplication::setWindowIcon(makeAppIcon());
  QtMainLoop loop;
  StatusBarController* statusBar = nullptr;
  ApplicationRuntime runtime(instance, loop, [&] {
    statusBar->openAppShell();
    return true;
  });
  runtime_ = &runtime;
  const auto appearance = followDarkPreference(
      loop.executor(), instance.logSink(),
      [&](std::optional<bool> prefersDark) { theme.setPreference(schemeOf(prefersDark)); });
  const bool onX11 = QGuiApplication::platformName() == QLatin1String("xcb");
  const auto host = makeTrayHost(loop.executor(), instance.logSink(), onX11);
  const DesktopTraits traits = desktopTraits();
  KestrelBlobGlyphRenderer renderer(KestrelBlobAvatarProvider::shared(), traits.tintsIcons);
  AppViews views(
      {runtime.coordinator(), loop.executor(), instance.clock(), instance.logSink(), programFolder()});
  StatusBarController controller({runtime.coordinator(), loop.executor(), *host, traits, renderer, logger,
                                  views.factories(), [&] { runtime.end(); }});
  statusBar = &controller;
  AppDelegate delegate(runtime, controller, [&] {
    // After the icon, which shall not wait for it.
    loop.executor().post([&views] { views.showIntroduction(); });
  });
  QObject::connect(qApp, &QGuiApplication::commitDataRequest, qApp,
                   [&](QSessionManager&) { delegate.applicationWillTerminate(); });
  delegate.applicationDidFinishLaunching();
  loop.run();
  if (!runtime.isEnding()) {
    // The toolkit ended the loop by itself, as a session manager may ask it to.
    delegate.applicationWillTerminate();
    loop.run();
  }
  runtime_ = nullptr;
}

}  // namespace kestrel
