#include "KestrelApp/Sections/AppearanceSection.h"

#include <QGridLayout>

#include "KestrelApp/Sections/BlobPreviewCard.h"
#include "KestrelApp/Sections/StatusIconSpecimen.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/CardGridLayout.h"
#include "KestrelApp/Widgets/SectionScrollArea.h"
#include "KestrelApp/Widgets/TitledCard.h"
#include "KestrelCore/Presentation/AppearanceModel.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

constexpr int kPreviewWidth = 8 * Theme::kSpaceLarge;

/// One size in each row.
QLayout* layOutIcons(const std::vector<AppearanceIcon>& icons, KestrelBlobGlyphRenderer& renderer) {
  auto* grid = new QGridLayout;
  grid->setSpacing(Theme::kSpaceMedium);
  int row = 0;
  int column = 0;
  int pixels = 0;
  for (const auto& icon : icons) {
    if (icon.pixels != pixels) {
      pixels = icon.pixels;
      ++row;
      column = 0;
    }
    grid->addWidget(new StatusIconSpecimen(icon, renderer, desktopTraits().tintsIcons), row, column);
    ++column;
  }
  return grid;
}

}  // namespace

AppearanceSection::AppearanceSection(ViewContext& context, QWidget* parent)
    : LiveView(context, parent), renderer_(KestrelBlobAvatarProvider::shared(), desktopTraits().tintsIcons) {
  const AppearanceModel model = appearanceModel();
  auto* previews = new CardGridLayout(kPreviewWidth, Theme::kSpaceMedium);
  for (const auto& preview : model.previews) previews->addWidget(new BlobPreviewCard(preview));
  auto* icons = new TitledCard(QStringLiteral("Status icon"));
  icons->lines().addLayout(layOutIcons(model.icons, renderer_));
  auto* scroll = new SectionScrollArea(SectionScrollArea::kWidestOfRows);
  scroll->lines().addLayout(previews);
  scroll->lines().addWidget(icons);
  scroll->lines().addStretch(1);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(scroll);
}

}  // namespace kestrel
