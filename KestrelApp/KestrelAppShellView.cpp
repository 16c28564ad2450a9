#include "KestrelApp/KestrelAppShellView.h"

#include <QBoxLayout>
#include <QKeySequence>
#include <QResizeEvent>
#include <QShortcut>
#include <QStackedWidget>

#include "KestrelApp/Sections/AgentsSection.h"
#include "KestrelApp/Sections/AppearanceSection.h"
#include "KestrelApp/Sections/BudgetSection.h"
#include "KestrelApp/Sections/OverviewSection.h"
#include "KestrelApp/Sections/PowerSection.h"
#include "KestrelApp/Sections/SettingsSection.h"
#include "KestrelApp/SidebarView.h"

namespace kestrel {
namespace {

constexpr QSize kSize(960, 640);
constexpr QSize kLeastSize(520, 400);
/// Below it the sidebar shows icons only.
constexpr int kCompactWidth = 800;

struct Entry {
  Icon icon;
  const char* word;
};
/// In the order of the sections.
constexpr Entry kEntries[] = {{Icon::overview, "Overview"},  {Icon::agents, "Agents"},
                              {Icon::palette, "Appearance"}, {Icon::power, "Power"},
                              {Icon::chart, "Budget"},       {Icon::gear, "Settings"}};

}  // namespace

KestrelAppShellView::KestrelAppShellView(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      context_(context),
      sidebar_(new SidebarView([this](std::size_t index) { showSection(static_cast<Section>(index)); })),
      stack_(new QStackedWidget) {
  setWindowTitle(QStringLiteral("Kestrel"));
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(0, 0, 0, 0);
  columns->setSpacing(0);
  columns->addWidget(sidebar_);
  columns->addWidget(stack_, 1);
  for (std::size_t i = 0; i < kSections; ++i) {
    const QKeySequence keys(static_cast<int>(Qt::CTRL) | (Qt::Key_1 + static_cast<int>(i)));
    sidebar_->addEntry(kEntries[i].icon, QString::fromLatin1(kEntries[i].word),
                       keys.toString(QKeySequence::NativeText));
    auto* shortcut = new QShortcut(keys, this);
    QObject::connect(shortcut, &QShortcut::activated, this,
                     [this, i] { showSection(static_cast<Section>(i)); });
  }
  showSection(Section::overview);
}

QSize KestrelAppShellView::sizeHint() const {
  return kSize;
}

QSize KestrelAppShellView::minimumSizeHint() const {
  return kLeastSize;
}

QWidget* KestrelAppShellView::makeSection(Section section) {
  switch (section) {
    case Section::overview:
      return new OverviewSection(context_);
    case Section::agents:
      return new AgentsSection(context_);
    case Section::appearance:
      return new AppearanceSection(context_);
    case Section::power:
      return new PowerSection(context_);
    case Section::budget:
      return new BudgetSection(context_);
    case Section::settings:
      break;
  }
  return new SettingsSection(context_);
}

void KestrelAppShellView::showSection(Section section) {
  const auto index = static_cast<std::size_t>(section);
  section_ = section;
  QWidget*& view = sections_[index];
  if (view == nullptr) {
    view = makeSection(section);
    view->setAccessibleName(QString::fromLatin1(kEntries[index].word));
    stack_->addWidget(view);
  }
  stack_->setCurrentWidget(view);
  sidebar_->setCurrent(index);
}

void KestrelAppShellView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  sidebar_->setCompact(width() < kCompactWidth);
}

}  // namespace kestrel
