#include "KestrelApp/Sections/OnboardingPageView.h"

#include <QBoxLayout>
#include <QPushButton>
#include <algorithm>

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Sections/OnboardingRowView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/VerticalScrollArea.h"
#include "KestrelApp/Widgets/WrappedLabel.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

constexpr int kRowsStretch = 1000;
/// Each of the mascot's pixels is nine wide.
constexpr int kBlobSize = 3 * Theme::kBlobSize;

}  // namespace

OnboardingPageView::OnboardingPageView(QWidget* parent)
    : QWidget(parent),
      pictures_(new QHBoxLayout),
      title_(new WrappedLabel(Theme::TextStyle::figure)),
      text_(new WrappedLabel(Theme::TextStyle::body)),
      button_(new QPushButton) {
  title_->setFont(Theme::font(Theme::TextStyle::figure, true));
  for (auto* label : {title_, text_}) label->setCentered();
  text_->setMuted(true);
  button_->setProperty("primary", true);
  button_->hide();
  connect(button_, &QPushButton::clicked, this, [this] { onButton(); });
  pictures_->setSpacing(Theme::kSpaceHuge);
  auto* list = new QWidget;
  rows_ = new QVBoxLayout(list);
  rows_->setContentsMargins(0, 0, 0, 0);
  rows_->setSpacing(Theme::kSpaceSmall);
  rows_->addStretch();

  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(0, 0, 0, 0);
  lines->setSpacing(Theme::kSpaceMedium);
  lines->addWidget(title_);
  lines->addWidget(text_);
  // Pictures stand in the middle, rows take all there is.
  lines->addStretch(1);
  lines->addLayout(pictures_);
  lines->addWidget(button_, 0, Qt::AlignHCenter);
  lines->addStretch(1);
  list_ = new VerticalScrollArea(list);
  list_->hide();
  lines->addWidget(list_, kRowsStretch);
}

void OnboardingPageView::setPage(const OnboardingPage& page) {
  if (page == shown_) return;
  title_->setText(displayText(page.title));
  text_->setText(displayText(page.text));
  if (page.pictures != shown_.pictures) setPictures(page.pictures);
  if (page.rows != shown_.rows) setRows(page.rows);
  shown_ = page;
}

void OnboardingPageView::setButton(const std::string& text, bool isEnabled) {
  button_->setText(displayText(text));
  button_->setEnabled(isEnabled);
  button_->setVisible(!text.empty());
}

OnboardingPageView::Picture OnboardingPageView::makePicture() {
  const Picture picture{new PixelWorkerAnimationView(KestrelBlobAvatarProvider::shared(), kBlobSize),
                        new WrappedLabel(Theme::TextStyle::body), new WrappedLabel(Theme::TextStyle::body)};
  picture.title->setFont(Theme::font(Theme::TextStyle::body, true));
  picture.text->setMuted(true);
  for (auto* label : {picture.title, picture.text}) label->setCentered();
  auto* column = new QVBoxLayout;
  column->setSpacing(Theme::kSpaceTiny);
  column->addWidget(picture.blob, 0, Qt::AlignHCenter);
  column->addSpacing(Theme::kSpaceSmall);
  column->addWidget(picture.title);
  column->addWidget(picture.text);
  column->addStretch();
  pictures_->addLayout(column, 1);
  return picture;
}

void OnboardingPageView::setPictures(const std::vector<OnboardingPicture>& pictures) {
  // A page always has as many.
  while (pictureViews_.size() < pictures.size()) pictureViews_.push_back(makePicture());
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    const Picture& view = pictureViews_[i];
    view.blob->setState(pictures[i].state);
    view.blob->setAccessibleName(displayText(pictures[i].title));
    view.title->setText(displayText(pictures[i].title));
    view.title->setVisible(!pictures[i].title.empty());
    view.text->setText(displayText(pictures[i].text));
    view.text->setVisible(!pictures[i].text.empty());
  }
}

void OnboardingPageView::setRows(const std::vector<OnboardingRow>& rows) {
  const bool isSameList = std::ranges::equal(rows, shown_.rows, {}, &OnboardingRow::key, &OnboardingRow::key);
  if (!isSameList) {
    for (auto* view : rowViews_) delete view;
    rowViews_.clear();
    for (const OnboardingRow& row : rows) {
      rowViews_.push_back(new OnboardingRowView([this, key = row.key] { onAction(key); }));
      rows_->insertWidget(rows_->count() - 1, rowViews_.back());
    }
  }
  for (std::size_t i = 0; i < rows.size(); ++i) rowViews_[i]->setRow(rows[i]);
  list_->setVisible(!rows.empty());
}

}  // namespace kestrel
