#include "KestrelApp/OnboardingView.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QShowEvent>
#include <QStackedWidget>

#include "KestrelApp/AgentSetupSheet.h"
#include "KestrelApp/Sections/OnboardingPageView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/PageDots.h"
#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/AgentsModel.h"

namespace kestrel {
namespace {

constexpr int kWidth = 29 * Theme::kSpaceHuge;
constexpr int kHeight = 20 * Theme::kSpaceHuge;
constexpr int kLastPage = 3;

}  // namespace

OnboardingView::OnboardingView(ViewContext& context, QWidget* parent)
    : LiveView(context, parent),
      stack_(new QStackedWidget),
      dots_(new PageDots(static_cast<int>(kPages))),
      skip_(new QPushButton(QStringLiteral("Skip"))),
      back_(new QPushButton(QStringLiteral("Back"))),
      next_(new QPushButton) {
  setWindowFlag(Qt::Dialog);
  setWindowTitle(QStringLiteral("Welcome to Kestrel"));
  for (auto& page : pages_) {
    page = new OnboardingPageView;
    page->onAction = [this](const std::string& row) { act(row); };
    page->onButton = [this] { this->context().trial.start(); };
    stack_->addWidget(page);
  }
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(2 * Theme::kSpaceHuge, 2 * Theme::kSpaceHuge, 2 * Theme::kSpaceHuge,
                            Theme::kSpaceHuge);
  lines->setSpacing(Theme::kSpaceLarge);
  lines->addWidget(stack_, 1);
  lines->addLayout(makeFooter());
  setTabOrder(next_, back_);
  setTabOrder(back_, skip_);
  setFixedSize(kWidth, kHeight);
  turnTo(0);

  const auto& inspection = context.inspection;
  subscriptions_.push_back(inspection.result().subscribe([this](const auto&) { requestRefresh(); }));
  subscriptions_.push_back(context.trial.report().subscribe([this](const auto&) { refreshAtOnce(); }));
}

QLayout* OnboardingView::makeFooter() {
  skip_->setProperty("quiet", true);
  next_->setProperty("primary", true);
  connect(skip_, &QPushButton::clicked, this, &QWidget::close);
  connect(back_, &QPushButton::clicked, this, [this] { turnTo(stack_->currentIndex() - 1); });
  connect(next_, &QPushButton::clicked, this, [this] { goOn(); });
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(Theme::kSpaceSmall);
  buttons->addWidget(skip_);
  buttons->addStretch();
  buttons->addWidget(back_);
  buttons->addWidget(next_);
  // In the middle, however wide the buttons are.
  auto* footer = new QGridLayout;
  footer->addLayout(buttons, 0, 0);
  footer->addWidget(dots_, 0, 0, Qt::AlignCenter);
  return footer;
}

void OnboardingView::turnTo(int page) {
  stack_->setCurrentIndex(page);
  dots_->setCurrent(page);
  const bool isLast = page == kLastPage;
  back_->setVisible(page > 0);
  skip_->setVisible(!isLast);
  next_->setText(isLast ? QStringLiteral("Done") : QStringLiteral("Next"));
  next_->setFocus();
}

void OnboardingView::goOn() {
  if (stack_->currentIndex() == kLastPage) {
    close();
  } else {
    turnTo(stack_->currentIndex() + 1);
  }
}

void OnboardingView::act(const std::string& row) {
  if (row == "notifications") {
    context().coordinator.settings().setNotificationsEnabled(true);
    return refreshAtOnce();
  }
  for (const AgentType agent : allCases<AgentType>()) {
    if (rawValue(agent) != row) continue;
    delete setup_;
    setup_ = new AgentSetupSheet(context(), agent, this);
    setup_->setAttribute(Qt::WA_DeleteOnClose);
    setup_->open();
  }
}

void OnboardingView::refresh() {
  const ViewContext& views = context();
  const OnboardingModel model =
      onboardingModel(onboardingFacts(views.coordinator, views.inspection, views.trial));
  for (std::size_t i = 0; i < kPages && i < model.pages.size(); ++i) pages_[i]->setPage(model.pages[i]);
  pages_.back()->setButton(model.trialButton, model.canTry);
}

void OnboardingView::showEvent(QShowEvent* event) {
  // Opened, not merely restored.
  if (!event->spontaneous()) turnTo(0);
  LiveView::showEvent(event);
  context().inspection.checkOnce(seenAgents(context().coordinator.agentFamilies().get()));
}

void OnboardingView::closeEvent(QCloseEvent* event) {
  QWidget::closeEvent(event);
  context().coordinator.settings().setHasCompletedOnboarding(true);
}

void OnboardingView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape:
      close();
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      // Of a button that has the keyboard, else of the one that goes on.
      if (auto* button = qobject_cast<QPushButton*>(focusWidget())) return button->click();
      return goOn();
    default:
      LiveView::keyPressEvent(event);
  }
}

}  // namespace kestrel
