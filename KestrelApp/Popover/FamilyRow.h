#pragma once

#include <QWidget>

#include "KestrelCore/Presentation/PopoverRow.h"

namespace kestrel {

class Badge;
class ElidedLabel;
class Gauge;
class IconView;
class StateDot;

/// One agent family: its state, its sessions, and what is left of its budget. Can have the keyboard, so that
/// it can be read aloud and scrolled to.
class FamilyRow final : public QWidget {
 public:
  explicit FamilyRow(QWidget* parent = nullptr);

  void setModel(const PopoverRow& row);
  [[nodiscard]] const std::string& id() const { return shown_.id; }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void showGauge(const PopoverRow& row);

  PopoverRow shown_;
  StateDot* dot_;
  IconView* icon_;
  ElidedLabel* name_;
  ElidedLabel* subtitle_;
  ElidedLabel* left_;
  Gauge* gauge_;
  ElidedLabel* budget_;
  Badge* alert_;
};

}  // namespace kestrel
