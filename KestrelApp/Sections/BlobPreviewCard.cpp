#include "KestrelApp/Sections/BlobPreviewCard.h"

#include <QBoxLayout>
#include <QPainter>

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelCore/Presentation/AppearanceModel.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

constexpr int kBlobSize = 4 * Theme::kSpaceLarge;
constexpr int kMeaningLines = 3;

ElidedLabel* makeText(const std::string& text, Theme::TextStyle style, Tone tone) {
  auto* label = new ElidedLabel(style);
  label->setText(displayText(text));
  label->setTone(tone);
  return label;
}

}  // namespace

BlobPreviewCard::BlobPreviewCard(const AppearancePreview& preview, QWidget* parent) : QWidget(parent) {
  setAccessibleName(displayText(preview.name));
  setAccessibleDescription(displayText(preview.caption + ". " + preview.meaning));
  auto* blob = new PixelWorkerAnimationView(KestrelBlobAvatarProvider::shared(), kBlobSize);
  blob->setState(preview.state);
  auto* name = makeText(preview.name, Theme::TextStyle::body, Tone::normal);
  name->setStrong(true);
  auto* meaning = makeText(preview.meaning, Theme::TextStyle::caption, Tone::muted);
  meaning->setMaximumLines(kMeaningLines);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(Theme::kSpaceMedium, Theme::kSpaceMedium, Theme::kSpaceMedium,
                            Theme::kSpaceMedium);
  lines->setSpacing(Theme::kSpaceTiny);
  lines->addWidget(blob, 0, Qt::AlignHCenter);
  lines->addSpacing(Theme::kSpaceTiny);
  lines->addWidget(name);
  lines->addWidget(makeText(preview.caption, Theme::TextStyle::caption, Tone::accent));
  lines->addWidget(meaning);
  lines->addStretch();
}

void BlobPreviewCard::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawCard(painter, rect());
}

}  // namespace kestrel
