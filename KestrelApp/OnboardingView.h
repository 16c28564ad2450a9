#pragma once

#include <QPointer>
#include <array>
#include <string>
#include <vector>

#include "KestrelApp/LiveView.h"

class QDialog;
class QPushButton;
class QStackedWidget;

namespace kestrel {

class OnboardingPageView;
class PageDots;

/// The introduction, a window of its own of four pages, the last with a live trial. However it is left, it
/// counts as done.
class OnboardingView final : public LiveView {
 public:
  explicit OnboardingView(ViewContext& context, QWidget* parent = nullptr);

 protected:
  void refresh() override;
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  static constexpr std::size_t kPages = 4;

  QLayout* makeFooter();
  void turnTo(int page);
  void goOn();
  void act(const std::string& row);

  QStackedWidget* stack_;
  std::array<OnboardingPageView*, kPages> pages_{};
  PageDots* dots_;
  QPushButton* skip_;
  QPushButton* back_;
  QPushButton* next_;
  QPointer<QDialog> setup_;
  std::vector<RegistrationPtr> subscriptions_;
};

}  // namespace kestrel
