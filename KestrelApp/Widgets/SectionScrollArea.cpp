#include "KestrelApp/Widgets/SectionScrollArea.h"

#include <QBoxLayout>
#include <algorithm>

#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

constexpr int kMargin = Theme::kSpaceHuge;

QWidget* makeContent() {
  auto* content = new QWidget;
  auto* lines = new QVBoxLayout(content);
  lines->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  lines->setSpacing(Theme::kSpaceMedium);
  return content;
}

}  // namespace

SectionScrollArea::SectionScrollArea(int widest, QWidget* parent)
    : VerticalScrollArea(makeContent(), parent),
      widest_(widest),
      lines_(static_cast<QVBoxLayout*>(widget()->layout())) {}

void SectionScrollArea::resizeEvent(QResizeEvent* event) {
  const int side = std::max(kMargin, (viewport()->width() - widest_) / 2);
  lines_->setContentsMargins(side, kMargin, side, kMargin);
  VerticalScrollArea::resizeEvent(event);
}

}  // namespace kestrel
