#pragma once

#include <QWidget>
#include <functional>

#include "KestrelCore/Presentation/PopoverModel.h"

class QPushButton;

namespace kestrel {

class MenuButton;

/// The buttons at the bottom.
class PopoverFooter final : public QWidget {
 public:
  explicit PopoverFooter(QWidget* parent = nullptr);

  /// Seconds.
  std::function<void(double)> onPause = [](double) {};
  std::function<void()> onResume = [] {};
  std::function<void(bool)> onKeepAwake = [](bool) {};
  std::function<void()> onOpenShell = [] {};
  std::function<void()> onOpenSettings = [] {};

  void setModel(const PopoverControls& controls);

 private:
  void addPauseEntry(const QString& text, double seconds);

  MenuButton* pause_;
  QPushButton* resume_;
  QPushButton* keepAwake_;
};

}  // namespace kestrel
