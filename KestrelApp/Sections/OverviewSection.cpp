#include "KestrelApp/Sections/OverviewSection.h"

#include <QBoxLayout>

#include "KestrelApp/Sections/AlertCard.h"
#include "KestrelApp/Sections/FigureCard.h"
#include "KestrelApp/Sections/OverviewHeader.h"
#include "KestrelApp/Sections/TimelineCard.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/CardGridLayout.h"
#include "KestrelApp/Widgets/Rows.h"
#include "KestrelApp/Widgets/SectionScrollArea.h"
#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

constexpr int kFigureWidth = 10 * Theme::kSpaceLarge;

}  // namespace

OverviewSection::OverviewSection(ViewContext& context, QWidget* parent)
    : LiveView(context, parent),
      header_(new OverviewHeader),
      timeline_(new TimelineCard),
      figuresGrid_(new CardGridLayout(kFigureWidth, Theme::kSpaceMedium)),
      alertLines_(new QVBoxLayout) {
  auto* scroll = new SectionScrollArea;
  alertLines_->setSpacing(Theme::kSpaceMedium);
  scroll->lines().addWidget(header_);
  scroll->lines().addLayout(alertLines_);
  scroll->lines().addLayout(figuresGrid_);
  scroll->lines().addWidget(timeline_);
  scroll->lines().addStretch(1);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(scroll);
}

void OverviewSection::refresh() {
  AppCoordinator& coordinator = context().coordinator;
  context().dismissed.update(coordinator.usage().lowBudgetAlerts().get());
  const OverviewModel model =
      overviewModel(overviewFacts(coordinator, context().calendar, context().dismissed));
  header_->setModel(model);
  timeline_->setBand(model.band);
  showFigures(model.figures);
  showAlerts(model.alerts);
}

void OverviewSection::showFigures(const std::vector<OverviewFigure>& figures) {
  while (figures_.size() < figures.size()) {
    figures_.push_back(new FigureCard);
    figuresGrid_->addWidget(figures_.back());
  }
  for (std::size_t i = 0; i < figures.size(); ++i) figures_[i]->setFigure(figures[i]);
}

void OverviewSection::showAlerts(const std::vector<OverviewAlert>& alerts) {
  keepRows(alerts_, alerts.size(), *alertLines_, [this] {
    return new AlertCard([this](const AlertKey& key) {
      context().dismissed.dismiss(key);
      refreshAtOnce();
    });
  });
  for (std::size_t i = 0; i < alerts.size(); ++i) alerts_[i]->setAlert(alerts[i]);
}

}  // namespace kestrel
