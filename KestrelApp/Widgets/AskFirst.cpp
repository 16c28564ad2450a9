#include "KestrelApp/Widgets/AskFirst.h"

#include <QMessageBox>
#include <QPushButton>
#include <utility>

namespace kestrel {

void askFirst(QWidget& parent, const std::string& question, const QString& actionWord,
              std::function<void()> onConfirmed) {
  const QString text = QString::fromStdString(question);
  auto* box = new QMessageBox(&parent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setWindowModality(Qt::WindowModal);
  box->setTextFormat(Qt::PlainText);
  box->setText(text.section(u'\n', 0, 0));
  box->setInformativeText(text.section(u'\n', 1));
  const auto* confirm = box->addButton(actionWord, QMessageBox::DestructiveRole);
  box->setDefaultButton(box->addButton(QMessageBox::Cancel));
  QObject::connect(confirm, &QPushButton::clicked, &parent, std::move(onConfirmed));
  box->open();
}

}  // namespace kestrel
