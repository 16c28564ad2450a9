#pragma once

#include <QWidget>

class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace kestrel {

struct SetupSnippet;

/// Something to paste, with a button that copies it, and what to do with it.
class SetupSnippetView final : public QWidget {
 public:
  explicit SetupSnippetView(const SetupSnippet& snippet, QWidget* parent = nullptr);

 private:
  void copy();

  QPlainTextEdit* text_;
  QPushButton* copy_;
  /// Until the button says again what it does.
  QTimer* confirmation_;
};

}  // namespace kestrel
