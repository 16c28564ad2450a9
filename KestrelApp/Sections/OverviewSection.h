#pragma once

#include <vector>

#include "KestrelApp/LiveView.h"
#include "KestrelCore/Presentation/OverviewModel.h"

class QBoxLayout;

namespace kestrel {

class AlertCard;
class FigureCard;
class OverviewHeader;
class TimelineCard;

/// Whether the machine is kept awake, the last day, today's figures, and what runs low.
class OverviewSection final : public LiveView {
 public:
  explicit OverviewSection(ViewContext& context, QWidget* parent = nullptr);

 protected:
  void refresh() override;

 private:
  void showFigures(const std::vector<OverviewFigure>& figures);
  void showAlerts(const std::vector<OverviewAlert>& alerts);

  OverviewHeader* header_;
  TimelineCard* timeline_;
  QLayout* figuresGrid_;
  QBoxLayout* alertLines_;
  std::vector<FigureCard*> figures_;
  std::vector<AlertCard*> alerts_;
};

}  // namespace kestrel
