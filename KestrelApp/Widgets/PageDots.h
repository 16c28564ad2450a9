#pragma once

#include <QWidget>

namespace kestrel {

/// A dot for each page; that of the current one is longer, so that it is not its colour alone that tells.
class PageDots final : public QWidget {
 public:
  explicit PageDots(int count, QWidget* parent = nullptr);

  void setCurrent(int page);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const int count_;
  int current_ = 0;
};

}  // namespace kestrel
