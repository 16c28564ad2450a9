#include "KestrelApp/Widgets/StateDot.h"

#include <QPainter>
#include <QString>

#include "KestrelApp/Theme.h"

namespace kestrel {

StateDot::StateDot(QWidget* parent) : QWidget(parent) {
  setFixedSize(Theme::kDotSize, Theme::kDotSize);
}

void StateDot::setState(AgentState state) {
  state_ = state;
  const auto label = displayLabel(state);
  setAccessibleName(QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())));
  update();
}

void StateDot::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawDot(painter, rect(), state_);
}

}  // namespace kestrel
