#pragma once

#include <QWidget>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

struct ViewContext;

/// A view that follows the state for as long as it can be seen: it is refreshed when it is shown and after
/// each evaluation, but at most twice a second. Hidden or minimised it does nothing.
class LiveView : public QWidget {
 public:
  /// The context outlives the view.
  explicit LiveView(ViewContext& context, QWidget* parent = nullptr);
  ~LiveView() override;

 protected:
  /// Shows the state of the moment. Touch only the widgets whose part changed, so that selection, scroll
  /// position, focus and open menus survive.
  virtual void refresh() = 0;

  /// Asks for a refresh soon, when something else than an evaluation has changed what is shown.
  void requestRefresh();
  /// After what the person who looks did themselves; nothing while it cannot be seen.
  void refreshAtOnce();

  [[nodiscard]] ViewContext& context() const { return context_; }

  void showEvent(QShowEvent* event) override;
  // Also when the window is minimised.
  void hideEvent(QHideEvent* event) override;

 private:
  [[nodiscard]] bool canBeSeen() const;

  ViewContext& context_;
  RegistrationPtr evaluations_;
  RegistrationPtr rest_;
  bool isResting_ = false;
  /// Something changed during the rest.
  bool isDue_ = false;
};

}  // namespace kestrel
