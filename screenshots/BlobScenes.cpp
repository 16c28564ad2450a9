#include <QColor>
#include <QPainter>

#include "screenshots/Scene.h"

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Theme.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

constexpr int kEnlarged = 96;
constexpr int kTrue = 16;
constexpr int kMaximumFrames = 4;
constexpr std::size_t kStates = RawValues<KestrelVisualState>::table.size();

/// All frames, a row for each state; enlarged, and beside that as small as they are.
class FrameSheet final : public QWidget {
 public:
  explicit FrameSheet(bool isNamed) : isNamed_(isNamed) {
    resize(kMaximumFrames * (kEnlarged + kTrue) + 2 * Theme::kSpaceLarge,
           static_cast<int>(kStates) * (kEnlarged + Theme::kSpaceHuge) + Theme::kSpaceLarge);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    const Theme& theme = Theme::of(*this);
    const auto& blob = KestrelBlobAvatarProvider::shared();
    QPainter painter(this);
    painter.fillRect(rect(), theme.color(Theme::Role::surface));
    painter.setPen(theme.color(Theme::Role::muted));
    painter.setFont(Theme::font(Theme::TextStyle::caption));
    for (std::size_t i = 0; i < kStates; ++i) {
      const auto state = static_cast<KestrelVisualState>(i);
      const int top = static_cast<int>(i) * (kEnlarged + Theme::kSpaceHuge) + Theme::kSpaceLarge;
      if (isNamed_) {
        const auto label = displayLabel(state);
        painter.drawText(Theme::kSpaceLarge, top,
                         QString::fromUtf8(label.data(), static_cast<int>(label.size())));
      }
      for (int frame = 0; frame < blob.frameCount(state); ++frame) {
        const int left = Theme::kSpaceLarge + frame * kEnlarged;
        drawSprite(painter, QRectF(left, top, kEnlarged, kEnlarged), blob.frame(state, frame));
        const int small = Theme::kSpaceLarge + kMaximumFrames * kEnlarged + frame * kTrue;
        drawSprite(painter, QRectF(small, top + kEnlarged - kTrue, kTrue, kTrue), blob.frame(state, frame));
      }
    }
  }

 private:
  const bool isNamed_;
};

}  // namespace

Scenes blobScenes() {
  return {{"blob",
           [] {
             return Scenery{nullptr, std::make_unique<FrameSheet>(true)};
           }},
          {"blob-unlabelled", [] {
             return Scenery{nullptr, std::make_unique<FrameSheet>(false)};
           }}};
}

}  // namespace kestrel
