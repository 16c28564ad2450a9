#pragma once

#include <QWidget>

#include "KestrelCore/Agents/AgentState.h"

namespace kestrel {

/// An agent's state as a small shape in its colour.
class StateDot final : public QWidget {
 public:
  explicit StateDot(QWidget* parent = nullptr);

  void setState(AgentState state);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  AgentState state_ = AgentState::unknown;
};

}  // namespace kestrel
