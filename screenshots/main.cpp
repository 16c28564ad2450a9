#include <QApplication>
#include <QFontInfo>
#include <QPixmap>
#include <QRawFont>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "screenshots/Scene.h"

#include "KestrelApp/ApplicationTheme.h"

// Renders every scene in both themes, at one, one and a half and two device pixels per pixel.
//   kestrel-screenshots FOLDER [PART OF A NAME]

namespace kestrel {
namespace {

/// Without fonts everything is drawn as boxes, and nobody complains.
bool haveFonts() {
  for (const auto style : {Theme::TextStyle::caption, Theme::TextStyle::figure}) {
    const QFont font = Theme::font(style);
    const QRawFont raw = QRawFont::fromFont(font);
    if (QFontInfo(font).family().isEmpty() || !raw.supportsCharacter(u'a') || !raw.supportsCharacter(u'·'))
      return false;
  }
  return true;
}

bool takePicture(QWidget& widget, const QString& file, double scale) {
  QPixmap picture((QSizeF(widget.size()) * scale).toSize());
  picture.setDevicePixelRatio(scale);
  picture.fill(Qt::transparent);
  widget.render(&picture);
  return picture.save(file);
}

bool takePictures(const Scene& scene, const QString& folder, ApplicationTheme& theme) {
  for (const auto scheme : {Theme::Scheme::light, Theme::Scheme::dark}) {
    theme.setPreference(scheme);
    const Scenery scenery = scene.build();
    scenery.widget->show();
    // Each round lays out one level more.
    for (int round = 0; round < 10; ++round) QApplication::processEvents();
    for (const double scale : {1.0, 1.5, 2.0}) {
      const QString file = folder + u'/' + QString::fromStdString(scene.name) +
                           (scheme == Theme::Scheme::light ? "-light" : "-dark") +
                           (scale == 1 ? QString() : QStringLiteral("@%1x").arg(scale)) + ".png";
      if (!takePicture(*scenery.widget, file, scale)) {
        std::fprintf(stderr, "kestrel-screenshots: %s cannot be written\n", qPrintable(file));
        return false;
      }
    }
  }
  return true;
}

/// The offscreen platform says at each window that it has no window manager to tell of sizes.
void showMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
  if (!text.contains("propagateSizeHints"))
    std::fprintf(stderr, "kestrel-screenshots: %s\n", qPrintable(text));
}

int run(const QString& folder, const std::string& part) {
  if (!haveFonts()) {
    std::fprintf(stderr, "kestrel-screenshots: there are no fonts to draw with\n");
    return 1;
  }
  ApplicationTheme theme(*qApp);
  int count = 0;
  for (const auto& scenes : {popoverScenes(), blobScenes(), kitScenes(), trayScenes(), agentsScenes(),
                             budgetScenes(), onboardingScenes(), windowScenes()}) {
    for (const Scene& scene : scenes) {
      if (scene.name.find(part) == std::string::npos) continue;
      if (!takePictures(scene, folder, theme)) return 1;
      ++count;
    }
  }
  std::printf("%d scenes in both themes and three scales in %s\n", count, qPrintable(folder));
  return count > 0 ? 0 : 1;
}

}  // namespace
}  // namespace kestrel

int main(int argc, char** argv) {
  // The same pictures wherever they are taken.
  ::setenv("TZ", "UTC", 1);
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  qInstallMessageHandler(kestrel::showMessage);
  QApplication application(argc, argv);
  if (argc < 2) {
    std::fprintf(stderr, "usage: kestrel-screenshots FOLDER [PART OF A NAME]\n");
    return 2;
  }
  return kestrel::run(QString::fromLocal8Bit(argv[1]), argc > 2 ? argv[2] : "");
}
