#include "KestrelApp/Sections/OnboardingRowView.h"

#include <QBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <algorithm>
#include <optional>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/IconView.h"
#include "KestrelCore/Presentation/OnboardingModel.h"

namespace kestrel {
namespace {

std::optional<AgentType> agentOf(const OnboardingRow& row) {
  for (const AgentType agent : allCases<AgentType>()) {
    if (rawValue(agent) == row.key) return agent;
  }
  return std::nullopt;
}

}  // namespace

OnboardingRowView::OnboardingRowView(std::function<void()> onAction, QWidget* parent)
    : QWidget(parent),
      icon_(new IconView(Icon::bell, Theme::kIconSize)),
      title_(new ElidedLabel(Theme::TextStyle::body)),
      text_(new ElidedLabel(Theme::TextStyle::caption)),
      action_(new QPushButton) {
  title_->setStrong(true);
  text_->setTone(Tone::muted);
  text_->setMaximumLines(2);
  connect(action_, &QPushButton::clicked, this, [onAction = std::move(onAction)] { onAction(); });
  auto* texts = new QVBoxLayout;
  texts->setSpacing(2);
  texts->addWidget(title_);
  texts->addWidget(text_);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceSmall, Theme::kSpaceLarge, Theme::kSpaceSmall);
  row->setSpacing(Theme::kSpaceMedium);
  row->addWidget(icon_);
  row->addLayout(texts, 1);
  row->addWidget(action_);
}

void OnboardingRowView::setRow(const OnboardingRow& row) {
  const auto agent = agentOf(row);
  if (row.isDone) {
    icon_->setIcon(Icon::check);
    icon_->setTone(Tone::good);
  } else if (agent) {
    icon_->setIcon(agentIcon(*agent));
    icon_->setTone(Tone::muted);
  } else {
    icon_->setIcon(row.key == "notifications" ? Icon::bell : Icon::laptop);
    icon_->setTone(Tone::muted);
  }
  setObjectName(displayText(row.key));
  setAccessibleName(displayText(row.title));
  setAccessibleDescription(displayText(row.text));
  title_->setText(displayText(row.title));
  text_->setText(displayText(row.text));
  action_->setText(displayText(row.action));
  action_->setAccessibleName(displayText(row.action + " " + row.title));
  action_->setVisible(!row.action.empty());
}

void OnboardingRowView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawCard(painter, rect());
}

}  // namespace kestrel
