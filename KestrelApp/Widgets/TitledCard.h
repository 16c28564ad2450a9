#pragma once

#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace kestrel {

/// A surface with a heading and, below it, lines for other widgets.
class TitledCard final : public QWidget {
 public:
  /// The title is also the accessible name.
  explicit TitledCard(const QString& title, QWidget* parent = nullptr);

  /// Right of the title.
  [[nodiscard]] QHBoxLayout& header() { return *header_; }
  [[nodiscard]] QVBoxLayout& lines() { return *lines_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QHBoxLayout* header_;
  QVBoxLayout* lines_;
};

}  // namespace kestrel
