#pragma once

#include <QTableView>

#include "KestrelCore/Support/Clock.h"

namespace kestrel {

class SessionTableModel;

/// The recorded sessions, in the order that a click on a header asks for. With Ctrl, the left and right arrow
/// keys choose the column to sort by, and up and down the direction.
class SessionTableView final : public QTableView {
 public:
  /// The clock outlives the view.
  explicit SessionTableView(const Clock& clock, QWidget* parent = nullptr);

  [[nodiscard]] SessionTableModel& sessions() { return *model_; }
  /// Stands in the place of rows while there are none.
  void setEmptyText(const QString& text);
  /// After rows came or went: as high as they are, up to a limit from which on it scrolls.
  void fitHeight();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void setUpHeaders();

  SessionTableModel* model_;
  QString emptyText_;
};

}  // namespace kestrel
