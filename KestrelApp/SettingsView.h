#pragma once

#include <QWidget>

namespace kestrel {

struct ViewContext;

/// The settings window's content: the main window's last section alone. Main thread.
class SettingsView final : public QWidget {
 public:
  /// The context outlives the view.
  explicit SettingsView(ViewContext& context, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;
};

}  // namespace kestrel
