#pragma once

#include <QWidget>

namespace kestrel {

struct AppearancePreview;

/// One of the mascot's states, alive, with what it does and when.
class BlobPreviewCard final : public QWidget {
 public:
  explicit BlobPreviewCard(const AppearancePreview& preview, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace kestrel
