#include "KestrelApp/Sections/SettingRows.h"

#include <QBoxLayout>
#include <algorithm>
#include <utility>

#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/Separator.h"

namespace kestrel {

SettingRows::SettingRows(ViewContext& context, std::function<void(const std::string&)> onApplied)
    : context_(context), onApplied_(std::move(onApplied)) {}

void SettingRows::add(const SettingRow& row, QBoxLayout& layout) {
  if (layout.count() > 0) layout.addWidget(new Separator);
  rows_.push_back(
      new SettingRowView(row, [this](const std::string& key, SettingValue value) { apply(key, value); }));
  layout.addWidget(rows_.back());
}

void SettingRows::apply(const std::string& key, SettingValue value) {
  const bool isDone = applySetting(context_.coordinator, key, value);
  onApplied_(key);
  if (isDone) return;
  const auto row = std::ranges::find(rows_, key, [](const auto* view) { return view->key(); });
  if (row != rows_.end()) (*row)->setProblem(kSettingNotKept);
}

void SettingRows::setModel(const SettingsModel& model) {
  for (auto* view : rows_) {
    if (const SettingRow* row = model.find(view->key())) view->setRow(*row);
  }
}

}  // namespace kestrel
