#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "KestrelCore/Presentation/OnboardingModel.h"

class QBoxLayout;
class QPushButton;

namespace kestrel {

class OnboardingRowView;
class PixelWorkerAnimationView;
class WrappedLabel;

/// One page of the introduction: pictures, what it is about, and rows or a button.
class OnboardingPageView final : public QWidget {
 public:
  explicit OnboardingPageView(QWidget* parent = nullptr);

  /// What a row's button does, by the row's key.
  std::function<void(const std::string&)> onAction;
  std::function<void()> onButton;

  void setPage(const OnboardingPage& page);
  /// Without a text there is no button.
  void setButton(const std::string& text, bool isEnabled);

 private:
  struct Picture {
    PixelWorkerAnimationView* blob;
    WrappedLabel* title;
    WrappedLabel* text;
  };
  void setPictures(const std::vector<OnboardingPicture>& pictures);
  void setRows(const std::vector<OnboardingRow>& rows);
  Picture makePicture();

  QBoxLayout* pictures_;
  WrappedLabel* title_;
  WrappedLabel* text_;
  QPushButton* button_;
  QWidget* list_;
  QBoxLayout* rows_;
  OnboardingPage shown_;
  std::vector<Picture> pictureViews_;
  std::vector<OnboardingRowView*> rowViews_;
};

}  // namespace kestrel
