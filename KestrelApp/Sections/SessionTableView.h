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

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void setUpHeaders();

  SessionTableModel* model_;
};

}  // namespace kestrel
