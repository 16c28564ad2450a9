#include "KestrelApp/Widgets/IconView.h"

#include <QColor>
#include <QPainter>

#include "KestrelApp/Theme.h"

namespace kestrel {

IconView::IconView(Icon icon, int size, QWidget* parent) : QWidget(parent), icon_(icon) {
  setFixedSize(size, size);
}

void IconView::setIcon(Icon icon) {
  icon_ = icon;
  update();
}

void IconView::setTone(Tone tone) {
  tone_ = tone;
  update();
}

void IconView::setAgent(AgentType agent) {
  agent_ = agent;
  setIcon(agentIcon(agent));
}

void IconView::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  drawIcon(painter, rect(), icon_, agent_ ? theme.series(*agent_) : theme.color(tone_));
}

}  // namespace kestrel
