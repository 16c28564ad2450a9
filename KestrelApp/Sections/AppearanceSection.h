#pragma once

#include "KestrelApp/KestrelBlobGlyphRenderer.h"
#include "KestrelApp/LiveView.h"

namespace kestrel {

/// What Kestrel looks like: the mascot in each state, and the status icon.
class AppearanceSection final : public LiveView {
 public:
  explicit AppearanceSection(ViewContext& context, QWidget* parent = nullptr);

 protected:
  // The same whatever happens; what moves does so by itself.
  void refresh() override {}

 private:
  KestrelBlobGlyphRenderer renderer_;
};

}  // namespace kestrel
