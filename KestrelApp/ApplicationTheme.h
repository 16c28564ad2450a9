#pragma once

#include <QObject>
#include <optional>

#include "KestrelApp/Theme.h"

class QApplication;

namespace kestrel {

/// Gives an application Kestrel's look, and keeps it light or dark as the system is; a system that tells
/// neither is light. One per application. Main thread.
class ApplicationTheme final : public QObject {
 public:
  /// The application outlives this object.
  explicit ApplicationTheme(QApplication& application);

  /// What the desktop was heard to prefer by other ways than its palette; absent: the palette tells.
  void setPreference(std::optional<Theme::Scheme> scheme);
  [[nodiscard]] Theme::Scheme scheme() const { return *applied_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void update();

  QApplication& application_;
  std::optional<Theme::Scheme> preference_;
  std::optional<Theme::Scheme> applied_;
};

}  // namespace kestrel
