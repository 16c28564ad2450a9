#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <vector>

#include "KestrelCore/Presentation/UsageSessionTable.h"
#include "KestrelCore/Support/Clock.h"

namespace kestrel {

/// The recorded sessions for a table view. A selected session stays selected wherever a change or another
/// order moves it.
class SessionTableModel final : public QAbstractTableModel {
 public:
  /// The clock outlives the model.
  explicit SessionTableModel(const Clock& clock, QObject* parent = nullptr);

  void load(std::vector<SessionUsageRecord> records);
  /// False when everything has to be loaded again.
  [[nodiscard]] bool refresh(const std::vector<SessionUsageRecord>& recent);

  [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  // Rows come and go at the end; what they show is settled by `rearrange`.
  void growTo(std::size_t rows);
  void shrinkTo(std::size_t rows);
  void rearrange(const std::function<void()>& apply);

  const Clock& clock_;
  UsageSessionTable table_;
  /// What the view was told.
  int rows_ = 0;
};

}  // namespace kestrel
