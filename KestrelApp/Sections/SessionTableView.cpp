#include "KestrelApp/Sections/SessionTableView.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>

#include "KestrelApp/Sections/SessionTableHeader.h"
#include "KestrelApp/Sections/SessionTableModel.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/TextLine.h"

namespace kestrel {
namespace {

constexpr int kRowHeight = Theme::kButtonHeight;
/// Of the columns but the model's, which takes the rest.
constexpr int kColumnWidth = 5 * Theme::kSpaceHuge;
constexpr int kModelColumn = static_cast<int>(SessionColumn::model);
constexpr int kLastActiveColumn = static_cast<int>(SessionColumn::lastActive);
/// So many rows have room.
constexpr int kFewestRows = 3;
constexpr int kMostRows = 10;

/// Texts in their own direction at the edge that the layout's direction asks for.
class CellDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const Theme& theme = Theme::of(*option.widget);
    painter->save();
    if (option.state.testFlag(QStyle::State_Selected))
      painter->fillRect(option.rect, theme.color(Theme::Role::raised));
    const QString text = index.data().toString();
    const QFont font = Theme::font(Theme::TextStyle::body);
    const QColor ink = theme.color(Theme::Role::text);
    TextLine line(*painter, option.rect.adjusted(Theme::kSpaceSmall, 0, -Theme::kSpaceSmall, 0),
                  option.direction);
    if (isTrailing(index.data(Qt::TextAlignmentRole))) {
      line.addTrailing(text, font, ink);
    } else {
      line.addLeading(text, font, ink);
    }
    painter->restore();
  }
};

}  // namespace

SessionTableView::SessionTableView(const Clock& clock, QWidget* parent)
    : QTableView(parent), model_(new SessionTableModel(clock, this)) {
  setModel(model_);
  setAccessibleName(QStringLiteral("Recent sessions"));
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setTabKeyNavigation(false);
  setShowGrid(false);
  setWordWrap(false);
  setTextElideMode(Qt::ElideRight);
  setCornerButtonEnabled(false);
  setFrameShape(QFrame::NoFrame);
  // It lies on a card.
  setStyleSheet(QStringLiteral("QTableView, QTableView:focus { border: none; background: transparent; }"));
  setItemDelegate(new CellDelegate(this));
  setUpHeaders();
  fitHeight();
}

void SessionTableView::setEmptyText(const QString& text) {
  if (text == emptyText_) return;
  emptyText_ = text;
  viewport()->update();
}

void SessionTableView::fitHeight() {
  const int rows = std::clamp(model_->rowCount({}), kFewestRows, kMostRows);
  setFixedHeight(horizontalHeader()->sizeHint().height() + rows * kRowHeight + 2 * frameWidth());
}

void SessionTableView::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  const Theme& theme = Theme::of(*this);
  QPainter painter(viewport());
  const QRect all = viewport()->rect();
  if (model_->rowCount({}) == 0) {
    painter.setFont(Theme::font(Theme::TextStyle::body));
    painter.setPen(theme.color(Theme::Role::muted));
    painter.drawText(all, Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
  }
  if (!hasFocus()) return;
  const QRect row = visualRect(currentIndex());
  const QRect ringed = row.isValid() ? QRect(0, row.top(), all.width(), row.height()) : all;
  theme.drawFocusRing(painter, ringed, Theme::kSpaceTiny);
}

void SessionTableView::setUpHeaders() {
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(kRowHeight);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  auto* header = new SessionTableHeader(this);
  setHorizontalHeader(header);
  header->setHighlightSections(false);
  header->setSectionsClickable(true);
  header->setMinimumSectionSize(2 * Theme::kSpaceHuge);
  header->setDefaultSectionSize(kColumnWidth);
  header->setSectionResizeMode(QHeaderView::Interactive);
  header->setSectionResizeMode(kModelColumn, QHeaderView::Stretch);
  header->setSortIndicator(kLastActiveColumn, Qt::DescendingOrder);
  setSortingEnabled(true);
}

void SessionTableView::keyPressEvent(QKeyEvent* event) {
  if (event->modifiers() != Qt::ControlModifier) return QTableView::keyPressEvent(event);
  const int count = model_->columnCount({});
  const int column = horizontalHeader()->sortIndicatorSection();
  const auto order = horizontalHeader()->sortIndicatorOrder();
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  switch (event->key()) {
    case Qt::Key_Left:
      return sortByColumn((column + (isMirrored ? 1 : count - 1)) % count, order);
    case Qt::Key_Right:
      return sortByColumn((column + (isMirrored ? count - 1 : 1)) % count, order);
    case Qt::Key_Up:
      return sortByColumn(column, Qt::AscendingOrder);
    case Qt::Key_Down:
      return sortByColumn(column, Qt::DescendingOrder);
    default:
      QTableView::keyPressEvent(event);
  }
}

}  // namespace kestrel
