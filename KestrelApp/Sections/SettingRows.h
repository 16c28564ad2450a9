#pragma once

#include <functional>
#include <vector>

#include "KestrelApp/Sections/SettingRowView.h"

class QBoxLayout;

namespace kestrel {

struct ViewContext;

/// The rows of settings that one view shows, wherever in it they stand: carries out what is set in them.
class SettingRows {
 public:
  /// `onApplied` hears of each setting that was carried out, by its key. The context outlives this object.
  SettingRows(ViewContext& context, std::function<void(const std::string& key)> onApplied);

  /// Adds a row to a layout, with a hairline above unless it is the layout's first.
  void add(const SettingRow& row, QBoxLayout& layout);
  /// Shows the settings of the moment.
  void setModel(const SettingsModel& model);

 private:
  void apply(const std::string& key, SettingValue value);

  ViewContext& context_;
  const std::function<void(const std::string&)> onApplied_;
  std::vector<SettingRowView*> rows_;
};

}  // namespace kestrel
