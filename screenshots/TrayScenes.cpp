#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <array>

#include "screenshots/Scene.h"

#include "KestrelApp/KestrelBlobGlyphRenderer.h"
#include "KestrelApp/Theme.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

constexpr std::array kHeights{16, 22, 24, 32, 44, 48};
constexpr std::array kCounts{0, 1, 9, 12};
constexpr int kStates = static_cast<int>(RawValues<KestrelVisualState>::table.size());
constexpr int kColumn = 80;
constexpr int kRow = 56;

/// A row for each size: every state with its count, and the disabled icon.
class TraySheet final : public QWidget {
 public:
  TraySheet() { resize((kStates + 3) * kColumn, static_cast<int>(kHeights.size()) * kRow); }

 protected:
  void paintEvent(QPaintEvent*) override {
    KestrelBlobGlyphRenderer renderer(KestrelBlobAvatarProvider::shared(), false);
    QPainter painter(this);
    painter.fillRect(rect(), Theme::of(*this).color(Theme::Role::surface));
    for (std::size_t row = 0; row < kHeights.size(); ++row) {
      for (int column = 0; column < kStates + 3; ++column) {
        // After the states, the disabled icon and the larger counts.
        const bool isState = column < kStates;
        const auto state = isState ? static_cast<KestrelVisualState>(column) : KestrelVisualState::working;
        const int count = isState ? kCounts[static_cast<std::size_t>(column % 2)]
                                  : kCounts[static_cast<std::size_t>(column - kStates + 1) % kCounts.size()];
        const QIcon icon = renderer.createStatusIcon(state, 0, count, column == kStates);
        const int height = kHeights[row];
        const QSize size = renderer.pictureSize(state, count, height);
        painter.drawPixmap(QPoint(column * kColumn, static_cast<int>(row) * kRow), icon.pixmap(size, 1.0));
      }
    }
  }
};

}  // namespace

Scenes trayScenes() {
  return {{"tray", [] { return Scenery{nullptr, std::make_unique<TraySheet>()}; }}};
}

}  // namespace kestrel
