#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

#include <array>
#include <cstddef>
#include <vector>

namespace kestrel {
namespace {

constexpr int kSide = 16;

/// A letter per pixel; anything else leaves what is below.
PixelRGBA colourOf(char letter) {
  switch (letter) {
    case 'B':
      return PixelRGBA::blobCyan;
    case 'D':
      return PixelRGBA::blobCyanDark;
    case 'G':
      return PixelRGBA::blobCyanGlow;
    case 'K':
      return PixelRGBA::black;
    case 'W':
      return PixelRGBA::white;
    case 'g':
      return PixelRGBA::terminalGreen;
    case 'p':
      return PixelRGBA::agentPurple;
    case 'a':
      return PixelRGBA::amber;
    case 'r':
      return PixelRGBA::red;
    case 's':
      return PixelRGBA::laptopSilver;
    case 'c':
      return PixelRGBA::chairGrey;
    default:
      return PixelRGBA::clear;
  }
}

/// Some rows of pixels and where they go.
struct Stamp {
  int x;
  int y;
  std::vector<std::string_view> rows;
};
using Stamps = std::vector<Stamp>;

class Canvas {
 public:
  void set(int x, int y, PixelRGBA colour) {
    if (colour == PixelRGBA::clear || x < 0 || y < 0 || x >= kSide || y >= kSide) return;
    pixels_[static_cast<std::size_t>(y) * kSide + static_cast<std::size_t>(x)] = colour;
  }
  void paint(const Stamp& stamp) {
    int y = stamp.y;
    for (const auto row : stamp.rows) {
      int x = stamp.x;
      for (const char letter : row) set(x++, y, colourOf(letter));
      ++y;
    }
  }
  [[nodiscard]] const std::vector<PixelRGBA>& pixels() const { return pixels_; }

 private:
  std::vector<PixelRGBA> pixels_ = std::vector<PixelRGBA>(kSide * kSide, PixelRGBA::clear);
};

// The body stands at this place; at work it bobs one row higher.
constexpr int kBodyX = 3;
constexpr int kBodyY = 5;

/// The body with its eyes shut, as it rests. B and K stand for the colours that are asked for.
void drawBlobBody(Canvas& canvas, int xOffset, int yOffset, PixelRGBA bodyColor, PixelRGBA eyeColor) {
  static constexpr std::array<std::string_view, 11> kBody{
      "...BBBB...",  //
      ".BBBBBBBB.",  //
      ".BWBBBBBB.",  //
      "BBWBBBBBBB",  //
      "BBBBBBBBBB",  //
      "BKKBBBBKKB",  //
      "BBBBBBBBBB",  //
      "BBBBBBBBBB",  //
      "BBBBBBBBBB",  //
      ".DDDDDDDD.",  //
      "..DD..DD..",
  };
  for (int y = 0; y < static_cast<int>(kBody.size()); ++y) {
    for (int x = 0; x < static_cast<int>(kBody[0].size()); ++x) {
      const char letter = kBody[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
      const PixelRGBA colour = letter == 'B' ? bodyColor : letter == 'K' ? eyeColor : colourOf(letter);
      canvas.set(xOffset + x, yOffset + y, colour);
    }
  }
}

int bodyRow(KestrelVisualState state, int index) {
  return state == KestrelVisualState::working && index % 2 == 0 ? kBodyY - 1 : kBodyY;
}

/// Eyes on the screen, hands taking turns on a laptop's keys, sparks of code going up.
Stamps workingAccents(int index) {
  const int top = bodyRow(KestrelVisualState::working, index);
  constexpr std::array<std::string_view, 4> kKeys{"ssgcgcgcgcgcss", "sscgcgcgcgcgss", "ssggccggccggss",
                                                  "ssccggccggccss"};
  const int leftHand = index % 2 == 0 ? 12 : 13;
  Stamps stamps{{4, top + 4, {"WK....WK", "KK....KK", "KK....KK"}},
                {7, top + 7, {"KK"}},
                {1, 13, {".ssssssssssss.", kKeys[static_cast<std::size_t>(index)], "ssssssssssssss"}},
                {3, leftHand, {"BB"}},
                {11, 25 - leftHand, {"BB"}}};
  static const std::array<Stamp, 4> kSparks{
      Stamp{13, 1, {"..g", "...", "g.."}}, Stamp{13, 2, {"g..", "...", ".g."}},
      Stamp{13, 1, {".g.", "...", "...", "g.."}}, Stamp{13, 0, {"..g", "...", ".g.", "g.."}}};
  stamps.push_back(kSparks[static_cast<std::size_t>(index)]);
  return stamps;
}

/// Looks at you with a question over its head, and raises a hand.
Stamps waitingAccents(int index) {
  static const std::array<Stamps, 3> kHands{Stamps{}, Stamps{{2, 10, {"B"}}},
                                            Stamps{{1, 8, {"B", ".B"}}, {2, 9, {"B"}}}};
  Stamps stamps{{4, 9, {"WWK..WWK", "WWK..WWK", "WWW..WWW"}},
                {7, 13, {"KK"}},
                {12, index == 0 ? 1 : 0, {".aa.", "a..a", "..a.", "....", "..a."}}};
  const auto& hand = kHands[static_cast<std::size_t>(index)];
  stamps.insert(stamps.end(), hand.begin(), hand.end());
  return stamps;
}

/// Beams, throws up its arms, and confetti flies.
Stamps completedAccents(int index) {
  static const std::array<Stamps, 3> kParty{
      Stamps{{2, 9, {"B..........B"}}, {5, 1, {"...r", "p...a", "..g"}}},
      Stamps{{1, 7, {"B............B", ".B..........B"}},
             {1, 0, {".....g...a", "...........g", "..p", ".......G....r", "a"}}},
      Stamps{{1, 6, {"B............B", "B............B", ".B..........B"}},
             {0, 1, {".g.....p......a.", "................", "....a.....g.....", "............r..p"}},
             {0, 9, {"p..............", "...............g"}}},
  };
  Stamps stamps{{4, 9, {"BK....KB", "KBK..KBK", "BBB..BBB"}}, {6, 12, {"K..K", ".KK."}}};
  const auto& party = kParty[static_cast<std::size_t>(index)];
  stamps.insert(stamps.end(), party.begin(), party.end());
  return stamps;
}

/// Crossed eyes, a crooked mouth, sweat, and an alarm that flashes.
Stamps errorAccents(int index) {
  static const std::array<Stamps, 2> kAlarm{
      Stamps{{13, 6, {"D", "D"}}},
      Stamps{{1, 2, {"r............r", ".r..........r"}}, {1, 6, {"r"}}, {14, 8, {"D", "D"}}},
  };
  Stamps stamps{{4, 8, {"KBK..KBK", "BKB..BKB", "KBK..KBK"}},
                {6, 12, {".K.K", "K.K."}},
                {7, 0, {"rr", "rr", "rr", "..", "rr"}}};
  const auto& alarm = kAlarm[static_cast<std::size_t>(index)];
  stamps.insert(stamps.end(), alarm.begin(), alarm.end());
  return stamps;
}

Stamps accents(KestrelVisualState state, int index) {
  switch (state) {
    case KestrelVisualState::working:
      return workingAccents(index);
    case KestrelVisualState::waiting:
      return waitingAccents(index);
    case KestrelVisualState::completed:
      return completedAccents(index);
    case KestrelVisualState::error:
      return errorAccents(index);
    case KestrelVisualState::idle:
      break;
  }
  return {};
}

}  // namespace

const KestrelBlobAvatarProvider& KestrelBlobAvatarProvider::shared() {
  static const KestrelBlobAvatarProvider provider;
  return provider;
}

int KestrelBlobAvatarProvider::frameCount(KestrelVisualState state) const {
  constexpr std::array<int, 5> kCounts{1, 4, 3, 3, 2};
  return kCounts[static_cast<std::size_t>(state)];
}

double KestrelBlobAvatarProvider::frameDuration(KestrelVisualState state) const {
  constexpr std::array<double, 5> kSeconds{1.0, 0.22, 0.45, 0.35, 0.8};
  return kSeconds[static_cast<std::size_t>(state)];
}

PixelSpriteFrame KestrelBlobAvatarProvider::frame(KestrelVisualState state, int frameIndex) const {
  const int count = frameCount(state);
  const int index = (frameIndex % count + count) % count;
  Canvas canvas;
  drawBlobBody(canvas, kBodyX, bodyRow(state, index), PixelRGBA::blobCyan, PixelRGBA::black);
  for (const auto& stamp : accents(state, index)) canvas.paint(stamp);
  return {kSide, kSide, canvas.pixels()};
}

}  // namespace kestrel
