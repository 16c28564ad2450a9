#include "KestrelApp/SidebarView.h"

#include <QBoxLayout>
#include <QPainter>
#include <QStyle>
#include <utility>

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/SidebarButton.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

constexpr int kWidth = 11 * Theme::kSpaceLarge;
constexpr int kCompactWidth = 4 * Theme::kSpaceLarge;
/// Twice the mascot's pixels.
constexpr int kBlobSize = 2 * Theme::kSpaceLarge;

ElidedLabel* makeName() {
  auto* name = new ElidedLabel(Theme::TextStyle::title);
  name->setStrong(true);
  name->setText(QStringLiteral("Kestrel"));
  return name;
}

}  // namespace

SidebarView::SidebarView(std::function<void(std::size_t)> onChosen, QWidget* parent)
    : QWidget(parent), onChosen_(std::move(onChosen)), name_(makeName()), entries_(new QVBoxLayout) {
  setAccessibleName(QStringLiteral("Sections"));
  setFixedWidth(kWidth);
  auto* top = new QHBoxLayout;
  top->setSpacing(Theme::kSpaceSmall);
  top->addSpacing(Theme::kSpaceTiny);
  top->addWidget(new PixelWorkerAnimationView(KestrelBlobAvatarProvider::shared(), kBlobSize));
  // Beside the mascot's body, which has room for its sparks above.
  auto* beside = new QVBoxLayout;
  beside->addSpacing(Theme::kSpaceSmall);
  beside->addWidget(name_);
  top->addLayout(beside, 1);
  entries_->setSpacing(Theme::kSpaceTiny);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(Theme::kSpaceMedium, Theme::kSpaceLarge, Theme::kSpaceMedium, Theme::kSpaceLarge);
  all->setSpacing(Theme::kSpaceLarge);
  all->addLayout(top);
  all->addLayout(entries_);
  all->addStretch();
}

void SidebarView::addEntry(Icon icon, const QString& word, const QString& keys) {
  auto* button = new SidebarButton(icon, word, keys);
  const std::size_t index = buttons_.size();
  QObject::connect(button, &QAbstractButton::toggled, this, [this, index](bool isCurrent) {
    if (isCurrent) onChosen_(index);
  });
  buttons_.push_back(button);
  entries_->addWidget(button);
}

void SidebarView::setCurrent(std::size_t index) {
  buttons_[index]->setChecked(true);
  const auto* focused = focusWidget();
  if (focused != nullptr && focused->hasFocus()) buttons_[index]->setFocus();
}

void SidebarView::setCompact(bool isCompact) {
  setFixedWidth(isCompact ? kCompactWidth : kWidth);
  name_->setVisible(!isCompact);
  for (auto* button : buttons_) button->setCompact(isCompact);
}

void SidebarView::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.fillRect(rect(), theme.color(Theme::Role::surface));
  const QRect edge(width() - Theme::kHairline, 0, Theme::kHairline, height());
  painter.fillRect(QStyle::visualRect(layoutDirection(), rect(), edge), theme.color(Theme::Role::hairline));
}

}  // namespace kestrel
