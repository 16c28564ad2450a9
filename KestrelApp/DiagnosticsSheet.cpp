#include "KestrelApp/DiagnosticsSheet.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTextDocument>

#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/ExportToFile.h"

namespace kestrel {
namespace {

constexpr QSize kSize(640, 480);
/// So that the sheet is seen before the program is busy.
constexpr double kMomentSeconds = 0.1;

QPlainTextEdit* makeTextBox() {
  auto* box = new QPlainTextEdit;
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPixelSize(Theme::font(Theme::TextStyle::body).pixelSize() - 1);
  box->setFont(font);
  box->document()->setDocumentMargin(Theme::kSpaceSmall);
  box->setReadOnly(true);
  // The arrow keys move through it.
  box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  box->setTabChangesFocus(true);
  box->setLineWrapMode(QPlainTextEdit::NoWrap);
  // JSON runs from left to right in every language.
  box->setLayoutDirection(Qt::LeftToRight);
  box->setAccessibleName(QStringLiteral("Diagnostics"));
  return box;
}

}  // namespace

DiagnosticsSheet::DiagnosticsSheet(ViewContext& context, QWidget* parent)
    : QDialog(parent),
      context_(context),
      text_(makeTextBox()),
      result_(new ElidedLabel(Theme::TextStyle::body)),
      copy_(new QPushButton(QStringLiteral("Copy"))),
      save_(new QPushButton(QStringLiteral("Save…"))) {
  setWindowTitle(QStringLiteral("Diagnostics"));
  setWindowModality(Qt::WindowModal);
  resize(kSize);
  result_->setTone(Tone::muted);
  auto* close = new QPushButton(QStringLiteral("Close"));
  close->setDefault(true);
  close->setProperty("primary", true);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(Theme::kSpaceSmall);
  buttons->addWidget(result_, 1);
  buttons->addWidget(copy_);
  buttons->addWidget(save_);
  buttons->addWidget(close);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceLarge, Theme::kSpaceLarge, Theme::kSpaceLarge);
  lines->setSpacing(Theme::kSpaceMedium);
  lines->addWidget(text_, 1);
  lines->addLayout(buttons);
  QObject::connect(copy_, &QPushButton::clicked, this, [this] { copy(); });
  QObject::connect(save_, &QPushButton::clicked, this, [this] { askWhere(); });
  QObject::connect(close, &QPushButton::clicked, this, &QDialog::accept);
}

void DiagnosticsSheet::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  copy_->setEnabled(false);
  save_->setEnabled(false);
  result_->setText(QStringLiteral("Gathering, a moment…"));
  gathering_ = context_.mainExecutor.after(kMomentSeconds, [this] { gather(); });
}

void DiagnosticsSheet::gather() {
  text_->setPlainText(displayText(context_.coordinator.exportDiagnosticsJSON()));
  result_->setText({});
  copy_->setEnabled(true);
  save_->setEnabled(true);
  text_->setFocus();
}

void DiagnosticsSheet::copy() {
  QGuiApplication::clipboard()->setText(text_->toPlainText());
  result_->setText(QStringLiteral("Copied"));
}

void DiagnosticsSheet::askWhere() {
  auto* dialog = new QFileDialog(this, QStringLiteral("Save Diagnostics"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(QStringLiteral("json"));
  dialog->selectFile(QStringLiteral("kestrel-diagnostics.json"));
  QObject::connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& chosen) { save(chosen); });
  dialog->open();
}

void DiagnosticsSheet::save(const QString& chosen) {
  const QPointer<ElidedLabel> result(result_);
  context_.exporter.write(chosen.toStdString(), text_->toPlainText().toStdString(),
                          [result](const ExportToFile::Result& done) {
                            if (!result) return;
                            result->setText(displayText(done.text));
                            result->setTone(done.isWritten ? Tone::good : Tone::bad);
                          });
}

}  // namespace kestrel
