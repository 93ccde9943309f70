#include "linux/camera/ReducedTransform.h"

#include <algorithm>
#include <cstring>
#include <limits>

#ifdef __SSE2__
#include <immintrin.h>
#endif

namespace vistrel::camera {
namespace {

// Weights are cosines in units of 2^-13. What lies between the passes has 2 bits behind the point.
constexpr int kWeightBits = 13;
constexpr int kPassBits = 2;
constexpr int kScaleBits = 3;  // both passes together give 8 times the sample
constexpr int kFlip = 0x80;    // from numbers around 0 to samples

/// What a one-dimensional transform is made of: each of `side` values is the first coefficient, shifted, and
/// the seven others, weighted. The values are means of 8 / side neighbours of the whole transform's.
template <int side>
struct Weights;
template <>
struct Weights<2> {
  static constexpr int kMeanBits = 2;
  static constexpr std::int16_t kOf[2][kJpegBlock] = {{0, 29692, 0, -10426, 0, 6967, 0, -5906},
                                                      {0, -29692, 0, 10426, 0, -6967, 0, 5906}};
};
template <>
struct Weights<4> {
  static constexpr int kMeanBits = 1;
  static constexpr std::int16_t kOf[4][kJpegBlock] = {{0, 20995, 15137, 7373, 0, -4926, -6270, -4176},
                                                      {0, 8697, -15137, -17799, 0, 11893, 6270, -1730},
                                                      {0, -8697, -15137, 17799, 0, -11893, 6270, 1730},
                                                      {0, -20995, 15137, -7373, 0, 4926, -6270, 4176}};
};
template <>
struct Weights<8> {
  static constexpr int kMeanBits = 0;
  static constexpr std::int16_t kOf[8][kJpegBlock] = {{0, 11363, 10703, 9633, 8192, 6437, 4433, 2260},
                                                      {0, 9633, 4433, -2259, -8192, -11362, -10704, -6436},
                                                      {0, 6437, -4433, -11362, -8192, 2261, 10704, 9633},
                                                      {0, 2260, -10703, -6436, 8192, 9633, -4433, -11363},
                                                      {0, -2260, -10703, 6436, 8192, -9633, -4433, 11363},
                                                      {0, -6437, -4433, 11362, -8192, -2261, 10704, -9633},
                                                      {0, -9633, 4433, 2259, -8192, 11362, -10704, 6436},
                                                      {0, -11363, 10703, -9633, 8192, -6437, 4433, -2260}};
};

template <int side>
constexpr int kShift = kWeightBits + Weights<side>::kMeanBits;
template <int side>
constexpr int kColumnRounding = kShift<side> - kPassBits;
template <int side>
constexpr int kRowRounding = kShift<side> + kPassBits + kScaleBits;

template <class Narrow, int bits>
Narrow rounded(std::uint32_t value) {
  const int shifted = static_cast<int>(value + (1U << (bits - 1))) >> bits;
  return static_cast<Narrow>(
      std::clamp<int>(shifted, std::numeric_limits<Narrow>::min(), std::numeric_limits<Narrow>::max()));
}

/// One value of a line of coefficients that lie `step` apart. Unsigned, since what a damaged frame holds may
/// overflow.
template <int side>
std::uint32_t valueOf(const std::int16_t* line, std::ptrdiff_t step, int index) {
  auto sum = static_cast<std::uint32_t>(line[0]) << kShift<side>;
  for (int k = 1; k < kJpegBlock; ++k)
    sum += static_cast<std::uint32_t>(line[k * step] * Weights<side>::kOf[index][k]);
  return sum;
}

}  // namespace

template <int side>
void transformPlainly(const Coefficients& block, std::uint8_t* samples, std::ptrdiff_t stride) {
  std::array<std::int16_t, std::size_t{side} * kJpegBlock> middle;
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < kJpegBlock; ++x)
      middle[y * kJpegBlock + x] =
          rounded<std::int16_t, kColumnRounding<side>>(valueOf<side>(block.data() + x, kJpegBlock, y));
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      samples[y * stride + x] =
          static_cast<std::uint8_t>(rounded<std::int8_t, kRowRounding<side>>(
                                        valueOf<side>(middle.data() + std::ptrdiff_t{kJpegBlock} * y, 1, x)) +
                                    128);
}

#ifdef __SSE2__

namespace {

constexpr int kLanes = 4;

/// Coefficients of four lines side by side: in each lane a pair of neighbours in the line.
struct Lines {
  __m128i pairs[kJpegBlock / 2];
};

__m128i pairOf(std::int16_t low, std::int16_t high) {
  return _mm_set1_epi32(static_cast<int>(static_cast<std::uint16_t>(low) |
                                         static_cast<std::uint32_t>(static_cast<std::uint16_t>(high)) << 16));
}

/// One value of each of the four lines.
template <int side, int rounding>
__m128i valuesOf(const Lines& lines, int index) {
  __m128i sum = _mm_srai_epi32(_mm_slli_epi32(lines.pairs[0], 16), 16 - kShift<side>);
  sum = _mm_add_epi32(sum, _mm_set1_epi32(1 << (rounding - 1)));
  for (int k = 0; k < kJpegBlock / 2; ++k) {
    const auto& weights = Weights<side>::kOf[index];
    sum = _mm_add_epi32(sum, _mm_madd_epi16(lines.pairs[k], pairOf(weights[2 * k], weights[2 * k + 1])));
  }
  return _mm_srai_epi32(sum, rounding);
}

__m128i load(const std::int16_t* row) { return _mm_load_si128(reinterpret_cast<const __m128i*>(row)); }

/// Rows of results, of which each is a line for the second pass.
template <int side>
struct Rows {
  __m128i of[side];
};

template <int side>
Rows<side> transformColumns(const Coefficients& block) {
  Lines left;
  Lines right;
  for (int k = 0; k < kJpegBlock / 2; ++k) {
    const __m128i even = load(block.data() + std::ptrdiff_t{2} * k * kJpegBlock);
    const __m128i odd = load(block.data() + (std::ptrdiff_t{2} * k + 1) * kJpegBlock);
    left.pairs[k] = _mm_unpacklo_epi16(even, odd);
    right.pairs[k] = _mm_unpackhi_epi16(even, odd);
  }
  Rows<side> rows;
  for (int y = 0; y < side; ++y)
    rows.of[y] = _mm_packs_epi32(valuesOf<side, kColumnRounding<side>>(left, y),
                                 valuesOf<side, kColumnRounding<side>>(right, y));
  return rows;
}

/// From four rows to four lines side by side.
Lines turned(__m128i a, __m128i b, __m128i c, __m128i d) {
  const __m128i abLeft = _mm_unpacklo_epi32(a, b);
  const __m128i abRight = _mm_unpackhi_epi32(a, b);
  const __m128i cdLeft = _mm_unpacklo_epi32(c, d);
  const __m128i cdRight = _mm_unpackhi_epi32(c, d);
  return {{_mm_unpacklo_epi64(abLeft, cdLeft), _mm_unpackhi_epi64(abLeft, cdLeft),
           _mm_unpacklo_epi64(abRight, cdRight), _mm_unpackhi_epi64(abRight, cdRight)}};
}

/// Four columns of four samples, as four rows of them.
__m128i turnedSamples(__m128i a, __m128i b, __m128i c, __m128i d) {
  const __m128i columns = _mm_packs_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
  const __m128i halves = _mm_unpacklo_epi8(columns, _mm_unpackhi_epi64(columns, columns));
  const __m128i rows = _mm_unpacklo_epi8(halves, _mm_unpackhi_epi64(halves, halves));
  return _mm_xor_si128(rows, _mm_set1_epi8(static_cast<char>(kFlip)));
}

/// `width` samples of each row of a square of four.
void store(__m128i square, int width, int height, std::uint8_t* samples, std::ptrdiff_t stride) {
  alignas(16) std::array<std::uint8_t, std::size_t{kLanes} * kLanes> bytes;
  _mm_store_si128(reinterpret_cast<__m128i*>(bytes.data()), square);
  for (int y = 0; y < height; ++y)
    std::memcpy(samples + y * stride, bytes.data() + std::ptrdiff_t{kLanes} * y, width);
}

}  // namespace

template <int side>
void transform(const Coefficients& block, std::uint8_t* samples, std::ptrdiff_t stride) {
  const auto rows = transformColumns<side>(block);
  constexpr int kSquare = std::min(side, kLanes);
  for (int y = 0; y < side; y += kSquare) {
    const int last = y + kSquare - 1;
    const Lines lines = turned(rows.of[y], rows.of[y + 1], rows.of[last - 1], rows.of[last]);
    for (int x = 0; x < side; x += kSquare) {
      const auto column = [&](int i) {
        return valuesOf<side, kRowRounding<side>>(lines, x + std::min(i, kSquare - 1));
      };
      store(turnedSamples(column(0), column(1), column(2), column(3)), kSquare, kSquare,
            samples + y * stride + x, stride);
    }
  }
}

#else

template <int side>
void transform(const Coefficients& block, std::uint8_t* samples, std::ptrdiff_t stride) {
  transformPlainly<side>(block, samples, stride);
}

#endif

template void transformPlainly<2>(const Coefficients&, std::uint8_t*, std::ptrdiff_t);
template void transformPlainly<4>(const Coefficients&, std::uint8_t*, std::ptrdiff_t);
template void transformPlainly<8>(const Coefficients&, std::uint8_t*, std::ptrdiff_t);
template void transform<2>(const Coefficients&, std::uint8_t*, std::ptrdiff_t);
template void transform<4>(const Coefficients&, std::uint8_t*, std::ptrdiff_t);
template void transform<8>(const Coefficients&, std::uint8_t*, std::ptrdiff_t);

}  // namespace vistrel::camera
