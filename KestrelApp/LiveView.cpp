#include "KestrelApp/LiveView.h"

#include "KestrelApp/ViewContext.h"
#include "KestrelCore/AppCoordinator.h"

namespace kestrel {
namespace {

constexpr double kRestSeconds = 0.5;

}  // namespace

LiveView::LiveView(ViewContext& context, QWidget* parent) : QWidget(parent), context_(context) {}

LiveView::~LiveView() = default;

void LiveView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  evaluations_ = context_.coordinator.observeEvaluations([this] { requestRefresh(); });
  refreshAtOnce();
}

void LiveView::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  evaluations_.reset();
  rest_.reset();
  isResting_ = isDue_ = false;
}

bool LiveView::canBeSeen() const {
  return isVisible() && !window()->isMinimized();
}

void LiveView::requestRefresh() {
  if (isResting_) {
    isDue_ = true;
  } else {
    refreshAtOnce();
  }
}

void LiveView::refreshAtOnce() {
  if (!canBeSeen()) return;
  isDue_ = false;
  isResting_ = true;
  rest_ = context_.mainExecutor.after(kRestSeconds, [this] {
    isResting_ = false;
    if (isDue_) refreshAtOnce();
  });
  refresh();
}

}  // namespace kestrel
