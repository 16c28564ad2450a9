#include "KestrelApp/Popover/NoAgentsView.h"

#include <QBoxLayout>
#include <QPushButton>

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {

NoAgentsView::NoAgentsView(QWidget* parent) : QWidget(parent) {
  auto* blob = new PixelWorkerAnimationView(KestrelBlobAvatarProvider::shared(),
                                            Theme::kBlobSize + Theme::kSpaceLarge);
  auto* title = new ElidedLabel(Theme::TextStyle::title);
  title->setStrong(true);
  title->setText(QStringLiteral("No agents yet"));
  auto* hint = new ElidedLabel(Theme::TextStyle::caption);
  hint->setTone(Tone::muted);
  hint->setText(QStringLiteral("Start one, and it appears here by itself."));
  auto* button = new QPushButton(QStringLiteral("Set up agents…"));
  button->setObjectName(QStringLiteral("setUpAgents"));
  button->setProperty("primary", true);
  button->setAutoDefault(true);
  connect(button, &QPushButton::clicked, this, [this] { onSetUpAgents(); });

  auto* lines = new QVBoxLayout(this);
  lines->setSpacing(Theme::kSpaceTiny);
  lines->addStretch();
  lines->addWidget(blob, 0, Qt::AlignHCenter);
  lines->addSpacing(Theme::kSpaceTiny);
  lines->addWidget(title, 0, Qt::AlignHCenter);
  lines->addWidget(hint, 0, Qt::AlignHCenter);
  lines->addSpacing(Theme::kSpaceSmall);
  lines->addWidget(button, 0, Qt::AlignHCenter);
  lines->addStretch();
}

}  // namespace kestrel
