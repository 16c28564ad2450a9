#pragma once

#include <QWidget>
#include <functional>

namespace kestrel {

/// What stands in place of the families as long as there are none.
class NoAgentsView final : public QWidget {
 public:
  explicit NoAgentsView(QWidget* parent = nullptr);

  std::function<void()> onSetUpAgents = [] {};
};

}  // namespace kestrel
