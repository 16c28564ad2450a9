#pragma once

#include "KestrelCore/Presentation/Timeline.h"

class QColor;
class QPainter;
class QRectF;

namespace kestrel {

class Theme;

/// Fills an area with what stands for a kind of time. Each kind has a pattern of its own beside its colour;
/// what is unknown is a gap with a dotted line through it.
void drawTimelineArea(QPainter& painter, const Theme& theme, const QRectF& area, TimelineKind kind);

/// Slanted lines over an area.
void drawHatching(QPainter& painter, const QRectF& area, const QColor& color);

}  // namespace kestrel
