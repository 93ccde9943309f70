#include "linux/camera/RowResampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace vistrel::camera {
namespace {

constexpr int kWindow = 16;
constexpr int kWhole = 128;
constexpr int kShift = 7;

// The compiler makes vector code of this.
void halve(const std::uint8_t* __restrict in, std::uint8_t* __restrict out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    out[i] = static_cast<std::uint8_t>((in[2 * i] + in[2 * i + 1] + 1) >> 1);
}

bool canBlendFast() {
#if defined(__x86_64__)
  static const bool has = __builtin_cpu_supports("ssse3") != 0;
  return has;
#else
  return false;
#endif
}

}  // namespace

void RowResampler::prepare(const Axis& axis, Direction direction) {
  if (axis == axis_ && direction == direction_) return;
  axis_ = axis;
  direction_ = direction;
  halvings_ = 0;
  samples_ = axis.samples;
  for (double ratio = axis.ratio(); ratio >= 2 && samples_ >= 2; ratio /= 2) {
    ++halvings_;
    samples_ /= 2;
  }
  isIdentity_ =
      direction == Direction::AsIs && axis.samples == axis.wanted() && axis.ratio() == 1 && axis.offset == 0;
  layOut();
}

// The place of a result among the halved samples, by the centres of the pixels that both stand for.
double RowResampler::positionOf(std::size_t result) const {
  const double centre = (static_cast<double>(result) + 0.5) * axis_.toStep;
  const double seen = direction_ == Direction::Mirrored ? axis_.to - centre : centre;
  const double sample = axis_.start() + seen * axis_.from / axis_.to / axis_.fromStep;
  return std::clamp(std::ldexp(sample, -halvings_) - 0.5, 0.0, samples_ - 1.0);
}

void RowResampler::layOut() {
  const auto wanted = static_cast<std::size_t>(axis_.wanted());
  blocks_.assign((wanted + kLanes - 1) / kLanes, Block{});
  for (std::size_t b = 0; b < blocks_.size(); ++b) {
    Block& block = blocks_[b];
    const std::size_t first = b * kLanes;
    const std::size_t last = std::min(first + kLanes, wanted) - 1;
    const int lowest = static_cast<int>(std::min(positionOf(first), positionOf(last)));
    // Nothing beyond the row is read, and short rows are done one by one.
    block.base = std::clamp(lowest, 0, std::max(samples_ - kWindow, 0));
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const double position = positionOf(std::min(first + lane, last));
      const int left = static_cast<int>(position);
      const int right = std::min(left + 1, samples_ - 1);
      const auto share = static_cast<std::uint8_t>(std::lround((position - left) * kWhole));
      block.pick[2 * lane] = static_cast<std::uint8_t>(left - block.base);
      block.pick[2 * lane + 1] = static_cast<std::uint8_t>(right - block.base);
      block.weights[2 * lane] = static_cast<std::uint8_t>(kWhole - share);
      block.weights[2 * lane + 1] = share;
    }
  }
}

const std::uint8_t* RowResampler::apply(const std::uint8_t* in) {
  if (isIdentity_) return in;
  auto count = static_cast<std::size_t>(axis_.samples);
  for (int i = 0; i < halvings_; ++i) {
    count /= 2;
    auto* half = halves_[i % 2].take(count);
    halve(in, half, count);
    in = half;
  }
  auto* out = out_.take(blocks_.size() * kLanes);
  if (canBlendFast() && samples_ >= kWindow) {
    blendFast(blocks_, in, out);
  } else {
    blend(blocks_, in, out);
  }
  return out;
}

void RowResampler::blend(const std::vector<Block>& blocks, const std::uint8_t* in, std::uint8_t* out) {
  for (const Block& block : blocks) {
    const auto* from = in + block.base;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const int sum = from[block.pick[2 * lane]] * block.weights[2 * lane] +
                      from[block.pick[2 * lane + 1]] * block.weights[2 * lane + 1];
      *out++ = static_cast<std::uint8_t>((sum + kWhole / 2) >> kShift);
    }
  }
}

#if defined(__x86_64__)

// Picks both neighbours of all eight results at once and blends them in one multiplication. The samples are
// made signed for it, since a weight may be 128.
__attribute__((target("ssse3"))) void RowResampler::blendFast(const std::vector<Block>& blocks,
                                                              const std::uint8_t* in, std::uint8_t* out) {
  const __m128i sign = _mm_set1_epi8(static_cast<char>(0x80));
  const __m128i rounding = _mm_set1_epi16(kWhole / 2);
  for (const Block& block : blocks) {
    const auto window = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + block.base));
    const auto pick = _mm_load_si128(reinterpret_cast<const __m128i*>(block.pick.data()));
    const auto weights = _mm_load_si128(reinterpret_cast<const __m128i*>(block.weights.data()));
    const auto pairs = _mm_xor_si128(_mm_shuffle_epi8(window, pick), sign);
    const auto sums = _mm_srai_epi16(_mm_add_epi16(_mm_maddubs_epi16(weights, pairs), rounding), kShift);
    const auto bytes = _mm_xor_si128(_mm_packs_epi16(sums, sums), sign);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
    out += kLanes;
  }
}

#else

void RowResampler::blendFast(const std::vector<Block>& blocks, const std::uint8_t* in, std::uint8_t* out) {
  blend(blocks, in, out);
}

#endif

}  // namespace vistrel::camera
