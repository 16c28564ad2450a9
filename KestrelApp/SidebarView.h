#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "KestrelApp/Widgets/Icon.h"

class QVBoxLayout;

namespace kestrel {

class SidebarButton;

/// The sections of a window, one of which is current. Narrow, it shows icons only.
class SidebarView final : public QWidget {
 public:
  /// `onChosen` is told the number of an entry that a person chose.
  explicit SidebarView(std::function<void(std::size_t)> onChosen, QWidget* parent = nullptr);

  /// Entries are numbered from 0; the tool tip names the keys that do the same.
  void addEntry(Icon icon, const QString& word, const QString& keys);
  void setCurrent(std::size_t index);
  void setCompact(bool isCompact);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const std::function<void(std::size_t)> onChosen_;
  QWidget* name_;
  QVBoxLayout* entries_;
  std::vector<SidebarButton*> buttons_;
};

}  // namespace kestrel
