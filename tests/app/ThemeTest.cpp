#include <QApplication>
#include <QColor>
#include <QPalette>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>

#include "KestrelApp/ApplicationTheme.h"
#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

using Role = Theme::Role;
using Linear = std::array<double, 3>;

Linear linear(const QColor& color) {
  const auto one = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
  return {one(color.redF()), one(color.greenF()), one(color.blueF())};
}

double contrast(const QColor& a, const QColor& b) {
  const auto luminance = [](const Linear& c) { return 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2]; };
  const auto [low, high] = std::minmax({luminance(linear(a)), luminance(linear(b))});
  return (high + 0.05) / (low + 0.05);
}

/// How far two colours are apart in the perceptual space Oklab.
double distance(const Linear& a, const Linear& b) {
  const auto lab = [](const Linear& c) {
    const double l = std::cbrt(0.4122214708 * c[0] + 0.5363325363 * c[1] + 0.0514459929 * c[2]);
    const double m = std::cbrt(0.2119034982 * c[0] + 0.6806995451 * c[1] + 0.1073969566 * c[2]);
    const double s = std::cbrt(0.0883024619 * c[0] + 0.2817188376 * c[1] + 0.6299787005 * c[2]);
    return Linear{0.2104542553 * l + 0.793617785 * m - 0.0040720468 * s,
                  1.9779984951 * l - 2.428592205 * m + 0.4505937099 * s,
                  0.0259040371 * l + 0.7827717662 * m - 0.808675766 * s};
  };
  const Linear p = lab(a);
  const Linear q = lab(b);
  return std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
}

/// What is left of a colour for eyes without one kind of cone (Machado and others, 2009).
Linear seenBy(const std::array<Linear, 3>& eyes, const Linear& c) {
  Linear seen{};
  for (std::size_t i = 0; i < 3; ++i)
    seen[i] = std::clamp(eyes[i][0] * c[0] + eyes[i][1] * c[1] + eyes[i][2] * c[2], 0.0, 1.0);
  return seen;
}

struct Scheme {
  Theme::Scheme scheme;
  friend void PrintTo(const Scheme& each, std::ostream* out) {
    *out << (each.scheme == Theme::Scheme::light ? "light" : "dark");
  }
};

class ThemeTest : public testing::TestWithParam<Scheme> {};
INSTANTIATE_TEST_SUITE_P(Schemes, ThemeTest,
                         testing::Values(Scheme{Theme::Scheme::light}, Scheme{Theme::Scheme::dark}));

TEST_P(ThemeTest, EveryTextCanBeRead) {
  const Theme& theme = Theme::of(GetParam().scheme);
  for (const Role background : {Role::window, Role::surface, Role::raised}) {
    for (const Role text : {Role::text, Role::muted, Role::accent, Role::good, Role::warn, Role::bad}) {
      // Buttons, menus and tool tips have no coloured texts.
      if (background == Role::raised && text > Role::muted) continue;
      EXPECT_GE(contrast(theme.color(text), theme.color(background)), 4.5)
          << static_cast<int>(text) << " on " << static_cast<int>(background);
    }
  }
  EXPECT_GE(contrast(theme.color(Role::onAccent), theme.color(Role::accentArea)), 4.5);
}

TEST_P(ThemeTest, AgentsAreToldApartByAllEyes) {
  const Theme& theme = Theme::of(GetParam().scheme);
  const std::array<std::array<Linear, 3>, 4> eyes{
      {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
       {{{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}},
       {{{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.01182, 0.04294, 0.968881}}},
       {{{1.255528, -0.076749, -0.178779}, {-0.078411, 0.930809, 0.147602}, {0.004733, 0.691367, 0.3039}}}}};
  for (int a = 0; a < 9; ++a) {
    const QColor color = theme.series(static_cast<AgentType>(a));
    EXPECT_GE(contrast(color, theme.color(Role::surface)), 3);
    EXPECT_GE(contrast(color, theme.color(Role::window)), 3);
    for (int b = 0; b < a; ++b) {
      for (const auto& each : eyes) {
        const Linear other = linear(theme.series(static_cast<AgentType>(b)));
        // Three times what is just noticed.
        EXPECT_GE(distance(seenBy(each, linear(color)), seenBy(each, other)), 0.06) << a << " and " << b;
      }
    }
  }
}

TEST(ApplicationThemeTest, FollowsTheSystemAndAPreference) {
  const QPalette before = QApplication::palette();
  ApplicationTheme theme(*qApp);
  QWidget widget;
  EXPECT_EQ(theme.scheme(), Theme::Scheme::light) << "where the system says nothing";
  const auto shown = [&] {
    QApplication::processEvents();
    return Theme::of(widget).scheme();
  };
  EXPECT_EQ(shown(), Theme::Scheme::light);
  QApplication::setPalette(QPalette(Qt::white, Qt::black));
  EXPECT_EQ(shown(), Theme::Scheme::dark);
  theme.setPreference(Theme::Scheme::light);
  EXPECT_EQ(shown(), Theme::Scheme::light);
  theme.setPreference(std::nullopt);
  EXPECT_EQ(shown(), Theme::Scheme::dark);
  QApplication::setPalette(before);
  EXPECT_EQ(shown(), Theme::Scheme::light);
}

}  // namespace
}  // namespace kestrel
