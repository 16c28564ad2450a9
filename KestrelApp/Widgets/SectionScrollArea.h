#pragma once

#include "KestrelApp/Widgets/VerticalScrollArea.h"

class QVBoxLayout;

namespace kestrel {

/// A section's content from top to bottom, with its margins. Where there is more room than it can use, it
/// stands in the middle.
class SectionScrollArea final : public VerticalScrollArea {
 public:
  /// For cards and charts, in logical pixels.
  static constexpr int kWidest = 960;
  /// For rows with a text at one end and its control at the other.
  static constexpr int kWidestOfRows = 720;

  explicit SectionScrollArea(int widest = kWidest, QWidget* parent = nullptr);

  [[nodiscard]] QVBoxLayout& lines() { return *lines_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  const int widest_;
  QVBoxLayout* lines_;
};

}  // namespace kestrel
