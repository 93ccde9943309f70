#include "stage/camera/PersonPicture.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vistrel::stage {
namespace {

constexpr Color kRedWall{201, 106, 78};
constexpr Color kBlueWall{92, 132, 196};
constexpr Color kWhite{244, 241, 234};
constexpr Color kLeaf{52, 138, 66};
constexpr Color kLightLeaf{74, 164, 84};
constexpr Color kPot{150, 84, 56};
constexpr Color kHair{58, 38, 30};
constexpr Color kSkin{238, 180, 146};
constexpr Color kShadedSkin{222, 158, 124};
constexpr Color kLips{190, 84, 84};
constexpr Color kShirt{24, 132, 70};
constexpr Color kCollar{18, 104, 54};
constexpr Color kFrame{70, 52, 44};

/// A letter, five columns by seven rows, the top row first and its left column the highest bit.
using Letter = std::array<unsigned, 7>;
constexpr Letter kV{0b10001, 0b10001, 0b10001, 0b10001, 0b01010, 0b01010, 0b00100};
constexpr Letter kI{0b01110, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110};
constexpr Letter kS{0b01111, 0b10000, 0b10000, 0b01110, 0b00001, 0b00001, 0b11110};
constexpr Letter kT{0b11111, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100, 0b00100};
constexpr Letter kR{0b11110, 0b10001, 0b10001, 0b11110, 0b10100, 0b10010, 0b10001};
constexpr Letter kE{0b11111, 0b10000, 0b10000, 0b11110, 0b10000, 0b10000, 0b11111};
constexpr Letter kL{0b10000, 0b10000, 0b10000, 0b10000, 0b10000, 0b10000, 0b11111};
constexpr std::array kWord{kV, kI, kS, kT, kR, kE, kL};
constexpr int kColumns = 5;

/// Draws in units of a thousandth of the picture's height, from its horizontal middle and its top.
class Brush {
 public:
  Brush(RawPicture& picture, int bottom) : picture_(picture), bottom_(bottom) {}

  void box(double left, double top, double right, double bottom, Color color) {
    fill(column(left), row(top), column(right), row(bottom), color);
  }

  void ellipse(double x, double y, double halfWidth, double halfHeight, Color color) {
    for (int line = row(y - halfHeight) & ~1; line < row(y + halfHeight); line += 2) {
      const double rise = ((line + 1) / unit() - y) / halfHeight;
      const double half = rise * rise < 1 ? halfWidth * std::sqrt(1 - rise * rise) : 0;
      fill(column(x - half), line, column(x + half), line + 2, color);
    }
  }

  void write(double left, double top, double dot, Color color) {
    for (std::size_t i = 0; i < kWord.size(); ++i)
      for (std::size_t y = 0; y < kWord[i].size(); ++y)
        for (int x = 0; x < kColumns; ++x) {
          if ((kWord[i][y] >> (kColumns - 1 - x) & 1U) == 0) continue;
          const double at = left + dot * (static_cast<double>(i) * (kColumns + 1) + x);
          const double line = top + dot * static_cast<double>(y);
          box(at, line, at + dot, line + dot, color);
        }
  }

 private:
  [[nodiscard]] double unit() const { return picture_.height() / 1000.0; }
  [[nodiscard]] int row(double y) const { return static_cast<int>(std::lround(y * unit())); }
  [[nodiscard]] int column(double x) const {
    return picture_.width() / 2 + static_cast<int>(std::lround(x * unit()));
  }
  void fill(int left, int top, int right, int bottom, Color color) {
    const Area area{std::max(0, left), std::max(0, top), std::min(picture_.width(), right),
                    std::min(bottom_, bottom)};
    if (area.left < area.right && area.top < area.bottom) picture_.fill(area, color);
  }

  RawPicture& picture_;
  int bottom_;
};

void drawRoom(Brush& brush) {
  brush.box(-1000, 0, 0, 1000, kRedWall);
  brush.box(0, 0, 1000, 1000, kBlueWall);
  brush.box(500, 130, 790, 390, kFrame);
  brush.box(520, 150, 770, 370, kWhite);
  brush.ellipse(645, 300, 90, 50, kLightLeaf);
  for (const auto& [x, y, width, height] :
       {std::array{-800, 560, 60, 210}, {-720, 640, 50, 180}, {-860, 660, 70, 170}})
    brush.ellipse(x, y, width, height, x == -720 ? kLightLeaf : kLeaf);
  brush.box(-890, 800, -690, 1000, kPot);
}

void drawHead(Brush& brush) {
  brush.ellipse(0, 360, 205, 250, kHair);
  brush.box(-70, 560, 70, 740, kShadedSkin);
  brush.ellipse(0, 400, 165, 215, kSkin);
  brush.ellipse(60, 205, 165, 85, kHair);
  for (const int side : {-1, 1}) {
    brush.box(side * 70 - 38, 322, side * 70 + 38, 334, kHair);
    brush.ellipse(side * 70, 380, 32, 18, kWhite);
    brush.ellipse(side * 70, 380, 16, 16, kHair);
  }
  brush.ellipse(0, 450, 20, 36, kShadedSkin);
  brush.ellipse(0, 525, 62, 20, kLips);
  brush.ellipse(95, 490, 9, 9, kHair);
}

void drawShirt(Brush& brush) {
  brush.ellipse(0, 1010, 440, 320, kShirt);
  brush.ellipse(0, 700, 96, 64, kCollar);
  brush.ellipse(0, 680, 76, 62, kShadedSkin);
  brush.write(-246, 800, 12, kWhite);
}

}  // namespace

void drawPerson(RawPicture& picture, int bottom) {
  Brush brush(picture, bottom);
  drawRoom(brush);
  drawShirt(brush);
  drawHead(brush);
}

}  // namespace vistrel::stage
