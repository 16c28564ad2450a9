#include "KestrelApp/Sections/SetupSnippetView.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <algorithm>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/WrappedLabel.h"
#include "KestrelCore/Presentation/AgentSetupModel.h"

namespace kestrel {
namespace {

constexpr int kConfirmationMilliseconds = 2000;
constexpr int kFewestLines = 3;
constexpr int kMostLines = 14;

QPlainTextEdit* makeTextBox(const QString& text) {
  auto* box = new QPlainTextEdit(text);
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPixelSize(Theme::font(Theme::TextStyle::body).pixelSize() - 1);
  box->setFont(font);
  box->setReadOnly(true);
  // The arrow keys move through it.
  box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  box->setTabChangesFocus(true);
  box->setLineWrapMode(QPlainTextEdit::NoWrap);
  // Code runs from left to right in every language.
  box->setLayoutDirection(Qt::LeftToRight);
  box->setAccessibleName(QStringLiteral("Text to paste"));
  const auto lines = std::clamp(static_cast<int>(text.count(u'\n')) + 1, kFewestLines, kMostLines);
  box->setFixedHeight(lines * QFontMetrics(font).lineSpacing() + Theme::kSpaceHuge + Theme::kSpaceSmall);
  return box;
}

WrappedLabel* makeLabel(const QString& text, bool isMuted) {
  auto* label = new WrappedLabel(Theme::TextStyle::body);
  label->setText(text);
  label->setMuted(isMuted);
  return label;
}

}  // namespace

SetupSnippetView::SetupSnippetView(const SetupSnippet& snippet, QWidget* parent)
    : QWidget(parent),
      text_(makeTextBox(displayText(snippet.text))),
      copy_(new QPushButton(QStringLiteral("Copy"))),
      confirmation_(new QTimer(this)) {
  auto* where = new ElidedLabel(Theme::TextStyle::caption);
  where->setText(displayText(snippet.where));
  where->setTone(Tone::muted);
  auto* upper = new QHBoxLayout;
  upper->addWidget(where, 1);
  upper->addWidget(copy_);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(0, 0, 0, 0);
  lines->setSpacing(Theme::kSpaceSmall);
  lines->addLayout(upper);
  lines->addWidget(text_);
  for (const auto& step : snippet.steps) lines->addWidget(makeLabel(displayText(step), false));
  if (!snippet.undo.empty()) lines->addWidget(makeLabel(displayText(snippet.undo), true));
  lines->addStretch();

  copy_->setAutoDefault(false);
  connect(copy_, &QPushButton::clicked, this, [this] { copy(); });
  confirmation_->setSingleShot(true);
  confirmation_->setInterval(kConfirmationMilliseconds);
  connect(confirmation_, &QTimer::timeout, this, [this] { copy_->setText(QStringLiteral("Copy")); });
}

void SetupSnippetView::copy() {
  QGuiApplication::clipboard()->setText(text_->toPlainText());
  // Not narrower than before, so that nothing beside it moves.
  copy_->setMinimumWidth(copy_->width());
  copy_->setText(QStringLiteral("Copied"));
  confirmation_->start();
}

}  // namespace kestrel
