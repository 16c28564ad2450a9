#pragma once

#include <QLayout>
#include <memory>
#include <vector>

namespace kestrel {

/// Widgets beside each other in columns of one width, in as few rows as fit and each row about as full, as
/// high as its highest. In right-to-left layouts the first column is the right one.
class CardGridLayout final : public QLayout {
 public:
  /// No column is narrower than so many logical pixels, unless there is not even room for one.
  CardGridLayout(int minimumColumnWidth, int spacing);
  ~CardGridLayout() override;

  void addItem(QLayoutItem* item) override;
  [[nodiscard]] int count() const override { return static_cast<int>(items_.size()); }
  [[nodiscard]] QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSize() const override;
  [[nodiscard]] Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  void setGeometry(const QRect& area) override;

 private:
  [[nodiscard]] int columnsFor(int width) const;
  /// Of the row that begins at an item.
  [[nodiscard]] int rowHeight(std::size_t first, int columns, int columnWidth) const;
  [[nodiscard]] int columnWidth(int width, int columns) const;

  const int minimumColumnWidth_;
  std::vector<std::unique_ptr<QLayoutItem>> items_;
};

}  // namespace kestrel
