#pragma once

#include <QScrollArea>
#include <vector>

#include "KestrelCore/Presentation/PopoverRow.h"

class QVBoxLayout;

namespace kestrel {

class FamilyRow;

/// The families below each other. A family keeps its widget, and with it the keyboard, while others come and
/// go.
class FamilyList final : public QScrollArea {
 public:
  explicit FamilyList(QWidget* parent = nullptr);

  void setModel(const std::vector<PopoverRow>& rows);

 private:
  [[nodiscard]] FamilyRow* takeRow(const std::string& id);

  QVBoxLayout* lines_;
  std::vector<FamilyRow*> rows_;
};

}  // namespace kestrel
