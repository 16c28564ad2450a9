#pragma once

#include <QWidget>
#include <optional>

#include "KestrelApp/Widgets/Icon.h"
#include "KestrelCore/Presentation/Tone.h"

namespace kestrel {

/// An icon beside a text. A screen reader passes it over: the text says it.
class IconView final : public QWidget {
 public:
  /// Logical pixels.
  IconView(Icon icon, int size, QWidget* parent = nullptr);

  void setIcon(Icon icon);
  void setTone(Tone tone);
  /// Shows the agent's icon in its hue.
  void setAgent(AgentType agent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Icon icon_;
  Tone tone_ = Tone::muted;
  std::optional<AgentType> agent_;
};

}  // namespace kestrel
