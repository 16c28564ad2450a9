#include "KestrelApp/Sections/AgentSessionDelegate.h"

#include <QPainter>

#include "KestrelApp/AgentIconResolver.h"
#include "KestrelApp/Sections/AgentSessionTreeModel.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/TextLine.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {
namespace {

constexpr int kHostHeight = Theme::kButtonHeight;
constexpr int kSessionHeight = Theme::kButtonHeight + Theme::kSpaceLarge;

}  // namespace

AgentSessionDelegate::AgentSessionDelegate(const AgentSessionTreeModel& model, AgentIconResolver& icons,
                                           QObject* parent)
    : QStyledItemDelegate(parent), model_(model), icons_(icons) {}

QSize AgentSessionDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
  return {0, model_.session(index) == nullptr ? kHostHeight : kSessionHeight};
}

void AgentSessionDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
  painter->save();
  const Theme& theme = Theme::of(*option.widget);
  painter->setRenderHint(QPainter::Antialiasing);
  const QRect area = option.rect.adjusted(0, 1, 0, -1);
  if (option.state.testFlag(QStyle::State_Selected)) {
    painter->setPen(Qt::NoPen);
    painter->setBrush(theme.color(Theme::Role::raised));
    painter->drawRoundedRect(area, Theme::kRadius, Theme::kRadius);
  }
  if (option.state.testFlag(QStyle::State_HasFocus)) theme.drawFocusRing(*painter, area, Theme::kRadius);
  if (const AgentSessionRow* session = model_.session(index)) {
    paintSession(*painter, option, *session);
  } else if (const AgentHostRow* host = model_.host(index)) {
    paintHost(*painter, option, *host);
  }
  painter->restore();
}

void AgentSessionDelegate::paintHost(QPainter& painter, const QStyleOptionViewItem& option,
                                     const AgentHostRow& host) const {
  const Theme& theme = Theme::of(*option.widget);
  const QRect area = option.rect.adjusted(Theme::kSpaceTiny, 0, -Theme::kSpaceTiny, 0);
  QRect icon(area.left(), area.center().y() - Theme::kIconSize / 2 + 1, Theme::kIconSize, Theme::kIconSize);
  const QString name = kestrel::displayText(host.name);
  icons_.hostIcon(name, theme).paint(&painter, QStyle::visualRect(option.direction, area, icon));
  const QRect text = area.adjusted(Theme::kIconSize + Theme::kSpaceSmall, 0, 0, 0);
  TextLine line(painter, QStyle::visualRect(option.direction, area, text), option.direction);
  line.addLeading(name, Theme::font(Theme::TextStyle::body), theme.color(Theme::Role::text));
}

void AgentSessionDelegate::paintSession(QPainter& painter, const QStyleOptionViewItem& option,
                                        const AgentSessionRow& session) const {
  const Theme& theme = Theme::of(*option.widget);
  const QRect area =
      option.rect.adjusted(Theme::kSpaceSmall, Theme::kSpaceTiny, -Theme::kSpaceSmall, -Theme::kSpaceTiny);
  const int half = area.height() / 2;
  const QRect dot(area.left(), area.top() + (half - Theme::kDotSize) / 2, Theme::kDotSize, Theme::kDotSize);
  theme.drawDot(painter, QStyle::visualRect(option.direction, area, dot), session.state);

  const QRect text = QStyle::visualRect(option.direction, area,
                                        area.adjusted(Theme::kDotSize + Theme::kSpaceSmall, 0, 0, 0));
  const QFont caption = Theme::font(Theme::TextStyle::caption);
  const QColor muted = theme.color(Theme::Role::muted);
  QRect lineArea(text.left(), text.top(), text.width(), half);
  TextLine upper(painter, lineArea, option.direction);
  upper.addTrailing(kestrel::displayText(session.lastEvent), caption, muted, 0.5);
  upper.addLeading(kestrel::displayText(session.title), Theme::font(Theme::TextStyle::body, true),
                   theme.color(Theme::Role::text), 0.7);
  upper.addLeading(kestrel::displayText(session.stateText), caption, theme.color(session.state));
  lineArea.moveTop(text.top() + half);
  TextLine lower(painter, lineArea, option.direction);
  lower.addTrailing(kestrel::displayText(session.confidence), caption, muted, 0.5);
  lower.addLeading(kestrel::displayText(dotted({session.directory, session.age})), caption, muted);
}

}  // namespace kestrel
