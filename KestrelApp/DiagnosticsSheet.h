#pragma once

#include <QDialog>

#include "KestrelCore/Support/Executor.h"

class QPlainTextEdit;
class QPushButton;

namespace kestrel {

class ElidedLabel;
struct ViewContext;

/// The diagnostics as JSON, to be read, copied or saved. They are gathered when the sheet is shown, which
/// takes up to two seconds; until then it says so. Main thread.
class DiagnosticsSheet final : public QDialog {
 public:
  /// The context outlives the sheet.
  explicit DiagnosticsSheet(ViewContext& context, QWidget* parent = nullptr);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void gather();
  void copy();
  void askWhere();
  void save(const QString& chosen);

  ViewContext& context_;
  QPlainTextEdit* text_;
  ElidedLabel* result_;
  QPushButton* copy_;
  QPushButton* save_;
  RegistrationPtr gathering_;
};

}  // namespace kestrel
