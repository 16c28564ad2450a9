#include "KestrelApp/Sections/BudgetSection.h"

#include <QBoxLayout>
#include <QDir>
#include <QFileDialog>
#include <QPushButton>
#include <algorithm>

#include "KestrelApp/Sections/BudgetCardView.h"
#include "KestrelApp/Sections/SessionTableModel.h"
#include "KestrelApp/Sections/SessionTableView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/AskFirst.h"
#include "KestrelApp/Widgets/CardGridLayout.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/SectionScrollArea.h"
#include "KestrelApp/Widgets/StackedBarChart.h"
#include "KestrelApp/Widgets/TitledCard.h"
#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/BudgetModel.h"
#include "KestrelCore/Presentation/ExportToFile.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

constexpr int kCardWidth = 13 * Theme::kSpaceHuge;

QWidget* makeCard(const QString& title, QWidget* content) {
  auto* card = new TitledCard(title);
  card->lines().addWidget(content);
  return card;
}

}  // namespace

BudgetSection::BudgetSection(ViewContext& context, QWidget* parent)
    : LiveView(context, parent),
      result_(new ElidedLabel(Theme::TextStyle::caption)),
      export_(new QPushButton(QStringLiteral("Export…"))),
      reset_(new QPushButton(QStringLiteral("Reset…"))),
      grid_(new CardGridLayout(kCardWidth, Theme::kSpaceMedium)),
      empty_(new ElidedLabel(Theme::TextStyle::body)),
      chart_(new StackedBarChart),
      sessions_(new SessionTableView(context.coordinator.clock())) {
  empty_->setTone(Tone::muted);
  auto* area = new SectionScrollArea;
  area->lines().addLayout(makeHead());
  area->lines().addWidget(empty_);
  area->lines().addLayout(grid_);
  area->lines().addWidget(makeCard(QStringLiteral("Tokens per day"), chart_));
  area->lines().addWidget(makeCard(QStringLiteral("Recent sessions"), sessions_));
  area->lines().addStretch();
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(area);
  recentSessions_ = context.coordinator.usage().recentSessions().subscribe([this](const auto&) {
    haveSessionsChanged_ = true;
    requestRefresh();
  });
}

BudgetSection::~BudgetSection() = default;

QLayout* BudgetSection::makeHead() {
  result_->setObjectName(QStringLiteral("result"));
  result_->setTrailing(true);
  connect(export_, &QPushButton::clicked, this, [this] { askForExport(); });
  connect(reset_, &QPushButton::clicked, this, [this] { askForReset(); });
  auto* title = new ElidedLabel(Theme::TextStyle::title);
  title->setText(QStringLiteral("Budget"));
  title->setStrong(true);
  auto* head = new QHBoxLayout;
  head->setSpacing(Theme::kSpaceSmall);
  head->addWidget(title);
  head->addWidget(result_, 1);
  head->addWidget(export_);
  head->addWidget(reset_);
  return head;
}

void BudgetSection::showEvent(QShowEvent* event) {
  loadSessions();
  LiveView::showEvent(event);
}

void BudgetSection::refresh() {
  const BudgetModel model = budgetModel(budgetFacts(context().coordinator, context().calendar));
  showCards(model);
  empty_->setText(displayText(model.emptyText));
  empty_->setVisible(!model.emptyText.empty());
  chart_->setChart(model.chart);
  sessions_->setEmptyText(displayText(model.sessionsEmptyText));
  refreshSessions();
}

void BudgetSection::showCards(const BudgetModel& model) {
  std::erase_if(cards_, [&model](const auto& card) {
    const bool isGone = std::ranges::find(model.cards, card.first, &BudgetCard::key) == model.cards.end();
    if (isGone) delete card.second;
    return isGone;
  });
  const bool areNew = cards_.size() != model.cards.size();
  for (const BudgetCard& card : model.cards) {
    BudgetCardView*& view = cards_[card.key];
    if (view == nullptr) view = new BudgetCardView;
    view->setCard(card);
  }
  if (!areNew) return;
  // In the order of the model.
  while (grid_->count() > 0) delete grid_->takeAt(0);
  for (const BudgetCard& card : model.cards) grid_->addWidget(cards_[card.key]);
}

void BudgetSection::refreshSessions() {
  if (haveSessionsChanged_ && !isLoading_) {
    haveSessionsChanged_ = false;
    const auto& recent = context().coordinator.usage().recentSessions().get();
    if (!sessions_->sessions().refresh(recent)) loadSessions();
    sessions_->fitHeight();
  }
  // Their ages.
  sessions_->viewport()->update();
}

void BudgetSection::loadSessions() {
  if (isLoading_) return;
  isLoading_ = true;
  const std::weak_ptr<int> alive = alive_;
  context().coordinator.usage().requestSessions(
      UsageSessionTable::kMaximumRows, [this, alive](const UsageCoordinator::SharedSessions& sessions) {
        if (alive.expired()) return;
        isLoading_ = false;
        sessions_->sessions().load(*sessions);
        sessions_->fitHeight();
      });
}

void BudgetSection::askForExport() {
  delete question_;
  auto* dialog = new QFileDialog(this, QStringLiteral("Export usage"), QDir::homePath(),
                                 QStringLiteral("JSON (*.json)"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(QStringLiteral("json"));
  dialog->selectFile(QStringLiteral("kestrel-usage.json"));
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& chosen) {
    const std::weak_ptr<int> alive = alive_;
    context().exporter.writeUsage(std::filesystem::path(chosen.toStdString()), context().coordinator.usage(),
                                  [this, alive](const ExportToFile::Result& result) {
                                    if (alive.expired()) return;
                                    result_->setTone(result.isWritten ? Tone::good : Tone::bad);
                                    result_->setText(displayText(result.text));
                                  });
  });
  question_ = dialog;
  dialog->open();
}

void BudgetSection::askForReset() {
  const BudgetModel model = budgetModel(budgetFacts(context().coordinator, context().calendar));
  askFirst(*this, model.resetQuestion, QStringLiteral("Reset"),
           [this] { context().coordinator.usage().resetUsageData(); });
}

}  // namespace kestrel
