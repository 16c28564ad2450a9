#include "KestrelApp/Popover/PowerStrip.h"

#include <QBoxLayout>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/IconView.h"

namespace kestrel {
namespace {

Icon supplyIcon(PowerStripModel::Supply supply) {
  switch (supply) {
    case PowerStripModel::Supply::charging:
      return Icon::bolt;
    case PowerStripModel::Supply::mains:
      return Icon::plug;
    case PowerStripModel::Supply::battery:
    case PowerStripModel::Supply::unknown:
      break;
  }
  return Icon::battery;
}

}  // namespace

PowerStrip::PowerStrip(QWidget* parent) : QWidget(parent) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceSmall, Theme::kSpaceLarge, Theme::kSpaceSmall);
  row->setSpacing(Theme::kSpaceTiny);
  power_ = addFigure("power");
  row->addStretch();
  heat_ = addFigure("heat");
  heat_.icon->setIcon(Icon::thermometer);
  row->addStretch();
  lowPower_ = addFigure("lowPower");
  lowPower_.icon->setIcon(Icon::leaf);
}

PowerStrip::Figure PowerStrip::addFigure(const char* name) {
  const Figure figure{new IconView(Icon::battery, Theme::kSmallIconSize + Theme::kSpaceTiny / 2),
                      new ElidedLabel(Theme::TextStyle::caption)};
  figure.label->setObjectName(QLatin1String(name));
  layout()->addWidget(figure.icon);
  layout()->addWidget(figure.label);
  return figure;
}

void PowerStrip::setModel(const PowerStripModel& model) {
  power_.icon->setIcon(supplyIcon(model.supply));
  showFigure(power_, model.power);
  showFigure(heat_, model.heat);
  showFigure(lowPower_, model.lowPower);
}

void PowerStrip::showFigure(const Figure& figure, const PowerFigure& value) {
  figure.icon->setTone(value.tone == Tone::normal ? Tone::muted : value.tone);
  figure.label->setTone(value.tone);
  figure.label->setText(QString::fromStdString(value.text));
  figure.label->setDetails(QString::fromStdString(value.details));
}

}  // namespace kestrel
