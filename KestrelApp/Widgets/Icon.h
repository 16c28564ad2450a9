#pragma once

#include "KestrelCore/Agents/AgentType.h"

class QColor;
class QIcon;
class QPainter;
class QRectF;

namespace kestrel {

/// Kestrel's own line drawings, so that they look alike at any size and on any desktop.
enum class Icon {
  // The machine.
  battery,
  bolt,
  plug,
  thermometer,
  laptop,
  leaf,
  // Controls.
  gear,
  pause,
  play,
  bell,
  chevronDown,
  warning,
  check,
  close,
  // Sections.
  overview,
  agents,
  palette,
  power,
  chart,
  // Agents.
  sparkles,
  terminal,
  brackets,
  hexagon,
  cursor,
  wind,
  wrench,
  chip
};

/// The drawing that stands for an agent family.
Icon agentIcon(AgentType agent);

/// Draws into the largest square in the middle of the area.
void drawIcon(QPainter& painter, const QRectF& area, Icon icon, const QColor& color);

/// For menus, lists and windows: drawn at whatever size is asked for.
QIcon makeIcon(Icon icon, const QColor& color);

}  // namespace kestrel
