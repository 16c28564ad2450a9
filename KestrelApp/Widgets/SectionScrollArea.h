#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace kestrel {

/// A section's content from top to bottom, with its margins, scrolled when it is too high. What gets the
/// keyboard comes into sight.
class SectionScrollArea final : public QScrollArea {
 public:
  explicit SectionScrollArea(QWidget* parent = nullptr);

  [[nodiscard]] QVBoxLayout& lines() { return *lines_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QVBoxLayout* lines_;
};

}  // namespace kestrel
