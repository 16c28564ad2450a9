#include "KestrelApp/AgentSetupSheet.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>

#include "KestrelApp/Sections/SetupSnippetView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/WrappedLabel.h"
#include "KestrelCore/Presentation/AgentSetupModel.h"

namespace kestrel {
namespace {

constexpr int kWidth = 27 * Theme::kSpaceHuge;
constexpr int kHeight = 22 * Theme::kSpaceHuge;

QScrollArea* makeScrollArea(QWidget* content) {
  auto* area = new QScrollArea;
  area->setWidget(content);
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFocusPolicy(Qt::NoFocus);
  return area;
}

}  // namespace

AgentSetupSheet::AgentSetupSheet(const AgentSetupModel& model, QWidget* parent)
    : QDialog(parent), snippets_(new QStackedWidget) {
  setWindowTitle(displayText(model.title));
  setModal(true);
  auto* title = new ElidedLabel(Theme::TextStyle::title);
  title->setText(displayText(model.title));
  title->setStrong(true);
  auto* introduction = new WrappedLabel(Theme::TextStyle::body);
  introduction->setText(displayText(model.introduction));
  introduction->setMuted(true);
  for (const auto& snippet : model.snippets) {
    snippets_->addWidget(makeScrollArea(new SetupSnippetView(snippet)));
  }
  auto* close = new QPushButton(QStringLiteral("Close"));
  close->setDefault(true);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);

  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(Theme::kSpaceHuge, Theme::kSpaceHuge, Theme::kSpaceHuge, Theme::kSpaceLarge);
  lines->setSpacing(Theme::kSpaceMedium);
  lines->addWidget(title);
  lines->addWidget(introduction);
  if (model.snippets.size() > 1) lines->addWidget(makeChoice(model));
  setMinimumWidth(kWidth);
  if (model.snippets.empty()) {
    lines->addStretch();
  } else {
    lines->addWidget(snippets_, 1);
    resize(kWidth, kHeight);
  }
  lines->addWidget(close, 0, Qt::AlignTrailing);
}

QWidget* AgentSetupSheet::makeChoice(const AgentSetupModel& model) {
  auto* choice = new QWidget;
  auto* row = new QHBoxLayout(choice);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(Theme::kSpaceSmall);
  auto* group = new QButtonGroup(choice);
  for (const auto& snippet : model.snippets) {
    auto* button = new QPushButton(displayText(snippet.title));
    button->setCheckable(true);
    button->setAutoDefault(false);
    group->addButton(button, static_cast<int>(group->buttons().size()));
    row->addWidget(button);
  }
  row->addStretch();
  group->button(0)->setChecked(true);
  connect(group, &QButtonGroup::idToggled, snippets_, [this](int id, bool isChosen) {
    if (isChosen) snippets_->setCurrentIndex(id);
  });
  return choice;
}

}  // namespace kestrel
