#pragma once

#include <QHeaderView>

namespace kestrel {

/// Whether a column's texts stand at its trailing edge, as figures do, by the alignment that the model tells.
[[nodiscard]] bool isTrailing(const QVariant& alignment);

/// The titles of a table in line with their columns, in either direction of the layout; an arrow says by
/// which one it is sorted.
class SessionTableHeader final : public QHeaderView {
 public:
  explicit SessionTableHeader(QWidget* parent = nullptr);

 protected:
  void paintSection(QPainter* painter, const QRect& area, int column) const override;
};

}  // namespace kestrel
