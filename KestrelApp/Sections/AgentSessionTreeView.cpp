#include "KestrelApp/Sections/AgentSessionTreeView.h"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "KestrelApp/Sections/AgentSessionDelegate.h"
#include "KestrelApp/Sections/AgentSessionTreeModel.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/Icon.h"

namespace kestrel {
namespace {

/// So many logical pixels of rows are shown at once.
constexpr int kMaximumHeight = 12 * Theme::kSpaceHuge;

/// Keeps the row at the top of a view where it is while the rows above it change. At the very top the newest
/// stay in sight instead.
class ScrollAnchor {
 public:
  explicit ScrollAnchor(QTreeView& view) : view_(view), top_(view.indexAt(QPoint(0, 0))) {
    if (top_.isValid()) offset_ = view.visualRect(top_).top();
  }
  ~ScrollAnchor() {
    QScrollBar* bar = view_.verticalScrollBar();
    if (wasAtTop_ || !top_.isValid()) return;
    bar->setValue(bar->value() + view_.visualRect(top_).top() - offset_);
  }
  ScrollAnchor(const ScrollAnchor&) = delete;
  ScrollAnchor& operator=(const ScrollAnchor&) = delete;

 private:
  QTreeView& view_;
  const QPersistentModelIndex top_;
  int offset_ = 0;
  const bool wasAtTop_ = view_.verticalScrollBar()->value() == 0;
};

}  // namespace

AgentSessionTreeView::AgentSessionTreeView(AgentIconResolver& icons, QWidget* parent)
    : QTreeView(parent), model_(new AgentSessionTreeModel(this)) {
  setModel(model_);
  setItemDelegate(new AgentSessionDelegate(*model_, icons, this));
  setHeaderHidden(true);
  setFrameShape(QFrame::NoFrame);
  // It lies on a card.
  setStyleSheet(QStringLiteral("QTreeView, QTreeView:focus { border: none; background: transparent; }"));
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setIndentation(Theme::kIconSize);
  setTabKeyNavigation(false);
  setAccessibleName(QStringLiteral("Sessions"));
  // Hosts are open until somebody closes them.
  connect(model_, &QAbstractItemModel::rowsInserted, this,
          [this](const QModelIndex& above, int first, int last) {
            for (int i = first; i <= last && !above.isValid(); ++i) expand(model_->index(i, 0, {}));
          });
  connect(this, &QTreeView::expanded, this, [this] { fitHeight(); });
  connect(this, &QTreeView::collapsed, this, [this] { fitHeight(); });
  fitHeight();
}

void AgentSessionTreeView::setHosts(const std::vector<AgentHostRow>& hosts) {
  {
    const ScrollAnchor anchor(*this);
    model_->setHosts(hosts);
    // Now, so that the anchor finds the rows where they are.
    executeDelayedItemsLayout();
  }
  fitHeight();
}

void AgentSessionTreeView::fitHeight() {
  int height = 0;
  for (int host = 0; host < model_->rowCount({}) && height < kMaximumHeight; ++host) {
    const QModelIndex index = model_->index(host, 0, {});
    height += sizeHintForIndex(index).height();
    if (!isExpanded(index) || model_->rowCount(index) == 0) continue;
    height += model_->rowCount(index) * sizeHintForIndex(model_->index(0, 0, index)).height();
  }
  setFixedHeight(std::min(height, kMaximumHeight) + 2 * frameWidth());
}

void AgentSessionTreeView::drawBranches(QPainter* painter, const QRect& area,
                                        const QModelIndex& index) const {
  if (index.parent().isValid()) return;
  const Theme& theme = Theme::of(*this);
  QRectF place(0, 0, Theme::kSmallIconSize, Theme::kSmallIconSize);
  place.moveCenter(QRectF(area).center());
  painter->save();
  painter->translate(place.center());
  const int closed = layoutDirection() == Qt::RightToLeft ? 90 : -90;
  painter->rotate(isExpanded(index) ? 0 : closed);
  place.moveCenter({});
  drawIcon(*painter, place, Icon::chevronDown, theme.color(Theme::Role::muted));
  painter->restore();
}

void AgentSessionTreeView::changeEvent(QEvent* event) {
  QTreeView::changeEvent(event);
  if (event->type() == QEvent::StyleChange) fitHeight();
}

}  // namespace kestrel
