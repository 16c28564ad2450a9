#include "KestrelApp/SettingsView.h"

#include <QBoxLayout>

#include "KestrelApp/Sections/SettingsSection.h"

namespace kestrel {
namespace {

constexpr QSize kSize(600, 640);
constexpr QSize kLeastSize(420, 320);

}  // namespace

SettingsView::SettingsView(ViewContext& context, QWidget* parent) : QWidget(parent) {
  setWindowTitle(QStringLiteral("Kestrel Settings"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(new SettingsSection(context));
}

QSize SettingsView::sizeHint() const {
  return kSize;
}

QSize SettingsView::minimumSizeHint() const {
  return kLeastSize;
}

}  // namespace kestrel
