#include "KestrelApp/Sections/SessionTableView.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>

#include "KestrelApp/Sections/SessionTableModel.h"
#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

constexpr int kRowHeight = Theme::kButtonHeight;
/// Of the columns but the model's, which takes the rest.
constexpr int kColumnWidth = 5 * Theme::kSpaceHuge;
constexpr int kModelColumn = static_cast<int>(SessionColumn::model);
constexpr int kLastActiveColumn = static_cast<int>(SessionColumn::lastActive);

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
  // It lies on a card; its texts begin below those of the header.
  setStyleSheet(QStringLiteral("QTableView { border: none; } QTableView::item { padding: 0 %1px; }")
                    .arg(Theme::kSpaceSmall));
  setUpHeaders();
}

void SessionTableView::setUpHeaders() {
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(kRowHeight);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  QHeaderView* header = horizontalHeader();
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
