#include "KestrelApp/Popover/PopoverFooter.h"

#include <QBoxLayout>
#include <QMenu>
#include <QPushButton>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/IconButton.h"
#include "KestrelApp/Widgets/MenuButton.h"
#include "KestrelCore/Presentation/SurfaceActions.h"

namespace kestrel {
namespace {

QPushButton* makeButton(const char* name, const QString& text) {
  auto* button = new QPushButton(text);
  button->setObjectName(QLatin1String(name));
  // Enter works as the space bar does, also outside dialogs.
  button->setAutoDefault(true);
  return button;
}

}  // namespace

PopoverFooter::PopoverFooter(QWidget* parent)
    : QWidget(parent),
      pause_(new MenuButton(QStringLiteral("Pause"))),
      resume_(makeButton("resume", QStringLiteral("Resume"))),
      keepAwake_(makeButton("keepAwake", QStringLiteral("Keep awake"))) {
  pause_->setObjectName(QStringLiteral("pause"));
  addPauseEntry(QStringLiteral("30 minutes"), SurfaceActions::kShortPauseSeconds);
  addPauseEntry(QStringLiteral("1 hour"), SurfaceActions::kLongPauseSeconds);
  keepAwake_->setCheckable(true);
  keepAwake_->setToolTip(QStringLiteral("Keep this computer awake whether or not agents work"));
  auto* open = makeButton("open", QStringLiteral("Open Kestrel…"));
  open->setProperty("quiet", true);
  auto* settings = new IconButton(Icon::gear, QStringLiteral("Settings"));
  settings->setObjectName(QStringLiteral("settings"));

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceSmall, Theme::kSpaceSmall, Theme::kSpaceMedium);
  row->setSpacing(Theme::kSpaceTiny);
  row->addWidget(pause_);
  row->addWidget(resume_);
  row->addWidget(keepAwake_);
  row->addStretch();
  row->addWidget(open);
  row->addWidget(settings);

  connect(resume_, &QPushButton::clicked, this, [this] { onResume(); });
  connect(keepAwake_, &QPushButton::clicked, this, [this](bool isOn) { onKeepAwake(isOn); });
  connect(open, &QPushButton::clicked, this, [this] { onOpenShell(); });
  connect(settings, &QToolButton::clicked, this, [this] { onOpenSettings(); });
}

void PopoverFooter::addPauseEntry(const QString& text, double seconds) {
  pause_->entries().addAction(text, this, [this, seconds] { onPause(seconds); });
}

void PopoverFooter::setModel(const PopoverControls& controls) {
  // The keyboard moves from one to the other rather than away.
  QWidget* const gone = controls.showsResume ? static_cast<QWidget*>(pause_) : resume_;
  QWidget* const shown = controls.showsResume ? resume_ : static_cast<QWidget*>(pause_);
  const bool hadFocus = gone->hasFocus();
  shown->show();
  pause_->setEnabled(controls.canPauseOrKeepAwake);
  keepAwake_->setEnabled(controls.canPauseOrKeepAwake);
  if (hadFocus) shown->setFocus();
  gone->hide();
  keepAwake_->setChecked(controls.isKeepAwakeOn);
}

}  // namespace kestrel
