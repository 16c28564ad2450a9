#include "KestrelApp/MenuBarContentView.h"

#include <QBoxLayout>
#include <QColor>
#include <QKeyEvent>
#include <QPainter>
#include <QStackedWidget>

#include "KestrelApp/Popover/FamilyList.h"
#include "KestrelApp/Popover/NoAgentsView.h"
#include "KestrelApp/Popover/PopoverFooter.h"
#include "KestrelApp/Popover/PopoverHeader.h"
#include "KestrelApp/Popover/PowerStrip.h"
#include "KestrelApp/Popover/TodayStrip.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/Separator.h"
#include "KestrelCore/AppCoordinator.h"

namespace kestrel {
namespace {

void callIfSet(const std::function<void()>& callback) {
  if (callback) callback();
}

}  // namespace

MenuBarContentView::MenuBarContentView(ViewContext& context, QWidget* parent)
    : LiveView(context, parent),
      actions_(context.coordinator.settings(), [&context] { context.coordinator.evaluate(); }),
      header_(new PopoverHeader),
      power_(new PowerStrip),
      middle_(new QStackedWidget),
      families_(new FamilyList),
      noAgents_(new NoAgentsView),
      today_(new TodayStrip),
      footer_(new PopoverFooter) {
  setFixedSize(Theme::kPopoverWidth, Theme::kPopoverHeight);
  // So that a click beside the controls takes the keyboard from them, and none has it at first.
  setFocusPolicy(Qt::ClickFocus);
  setWindowTitle(QStringLiteral("Kestrel"));
  setAccessibleName(QStringLiteral("Kestrel"));
  layOut();
  connectControls();
}

void MenuBarContentView::layOut() {
  middle_->addWidget(noAgents_);
  middle_->addWidget(families_);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins({});
  lines->setSpacing(0);
  lines->addWidget(header_);
  lines->addWidget(new Separator);
  lines->addWidget(power_);
  lines->addWidget(new Separator);
  lines->addWidget(middle_, 1);
  lines->addWidget(new Separator);
  lines->addWidget(today_);
  lines->addWidget(new Separator);
  lines->addWidget(footer_);
}

void MenuBarContentView::connectControls() {
  // Also where nothing came of it, each control then shows what is.
  const auto then = [this](const auto& act) {
    act();
    refreshAtOnce();
  };
  header_->onMasterSwitched = [this, then](bool isOn) { then([&] { actions_.setMasterEnabled(isOn); }); };
  footer_->onPause = [this, then](double seconds) { then([&] { actions_.pause(seconds); }); };
  footer_->onResume = [this, then] { then([&] { actions_.resume(); }); };
  footer_->onKeepAwake = [this, then](bool isOn) { then([&] { actions_.setManualHold(isOn); }); };
  footer_->onOpenShell = [this] { callIfSet(onOpenShell); };
  footer_->onOpenSettings = [this] { callIfSet(onOpenSettings); };
  noAgents_->onSetUpAgents = [this] { callIfSet(onSetUpAgents); };
}

void MenuBarContentView::refresh() {
  PopoverModel model = popoverModel(popoverFacts(context().coordinator, context().calendar));
  // A press may have moved a control away from what the model says.
  header_->setModel(model.headline, model.controls.isMasterOn);
  footer_->setModel(model.controls);
  if (shown_ == model) return;
  if (!shown_ || shown_->power != model.power) power_->setModel(model.power);
  if (!shown_ || shown_->rows != model.rows) {
    families_->setModel(model.rows);
    middle_->setCurrentWidget(model.rows.empty() ? static_cast<QWidget*>(noAgents_) : families_);
  }
  if (!shown_ || shown_->today != model.today) today_->setModel(model.today);
  shown_ = std::move(model);
}

void MenuBarContentView::showEvent(QShowEvent* event) {
  LiveView::showEvent(event);
  setFocus(Qt::PopupFocusReason);
}

void MenuBarContentView::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape || !onDismiss) return QWidget::keyPressEvent(event);
  onDismiss();
}

void MenuBarContentView::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.fillRect(rect(), theme.color(Theme::Role::window));
  if (!isWindow()) return;
  // Where it is a window of its own it may have no frame.
  painter.setPen(theme.color(Theme::Role::hairline));
  painter.drawRect(rect().adjusted(0, 0, -Theme::kHairline, -Theme::kHairline));
}

}  // namespace kestrel
