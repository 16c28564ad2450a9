#include "KestrelApp/AppWindow.h"

#include <QLabel>
#include <QMainWindow>
#include <QString>
#include <QVBoxLayout>

#include "KestrelApp/Theme.h"

namespace kestrel {

AppWindow::AppWindow(const std::string& title, std::unique_ptr<QWidget> content)
    : window_(std::make_unique<QMainWindow>()), notice_(new QLabel) {
  window_->setWindowTitle(QString::fromStdString(title));
  notice_->setTextFormat(Qt::PlainText);
  notice_->setWordWrap(true);
  notice_->setMargin(Theme::kSpaceMedium);
  notice_->hide();
  auto* const body = new QWidget;
  auto* const layout = new QVBoxLayout(body);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(notice_);
  const QSize size = content->sizeHint();
  layout->addWidget(content.release(), 1);
  window_->setCentralWidget(body);
  window_->resize(size);
}

AppWindow::~AppWindow() = default;

void AppWindow::bringToFront() {
  window_->show();
  window_->raise();
  window_->activateWindow();
}

void AppWindow::setNotice(const std::string& text) {
  notice_->setText(QString::fromStdString(text));
  notice_->setVisible(!text.empty());
}

}  // namespace kestrel
