#include "linux/camera/JpegDecoder.h"

#include <array>
#include <csetjmp>
#include <cstdio>
#include <utility>

// The library's header needs the two above it.
#include <jerror.h>
#include <jpeglib.h>

#include "linux/camera/JpegHeader.h"

// libjpeg reports a fatal error by a jump out of its own frames. Between `setjmp` in `decode` and the library
// there are only functions of this file, and none of them holds an object with a destructor.

namespace vistrel::camera {

struct JpegDecoder::State {
  jpeg_decompress_struct codec{};
  jpeg_error_mgr errors{};
  jpeg_source_mgr source{};
  std::jmp_buf fatal{};
  bool isDamaged = false;
  bool hasEnded = false;
  PixelSize glass;
  OwnedPicture* out = nullptr;
  const std::atomic<bool>* isCalledOff = nullptr;
};

namespace {

constexpr int kComponents = 3;
constexpr int kMostRowsPerStep = 4 * 2 * DCTSIZE;
// Rows are padded so that the decoder may write whole blocks.
constexpr int kRowPadding = 64;
constexpr std::array<JOCTET, 2> kEndMarker = {0xff, JPEG_EOI};

using State = JpegDecoder::State;

State& stateOf(j_common_ptr codec) { return *static_cast<State*>(codec->client_data); }

[[noreturn]] void giveUp(j_common_ptr codec) { std::longjmp(stateOf(codec).fatal, 1); }

// Cameras pad their frames; every other warning means that the picture is not what was sent.
bool isHarmless(int code) {
  return code == JWRN_EXTRANEOUS_DATA || code == JWRN_JFIF_MAJOR || code == JWRN_ADOBE_XFORM;
}

void onMessage(j_common_ptr codec, int level) {
  if (level < 0 && !isHarmless(codec->err->msg_code)) stateOf(codec).isDamaged = true;
}

void sayNothing(j_common_ptr) {}
void startSource(j_decompress_ptr) {}

// All of the frame is in memory. The library asks for more where the end marker is missing, and even in front
// of the last codes: it gets that marker, which ends a picture that was cut short with a warning.
boolean endOfFrame(j_decompress_ptr codec) {
  const auto common = reinterpret_cast<j_common_ptr>(codec);
  if (std::exchange(stateOf(common).hasEnded, true)) giveUp(common);
  codec->src->next_input_byte = kEndMarker.data();
  codec->src->bytes_in_buffer = kEndMarker.size();
  return TRUE;
}

void skipBytes(j_decompress_ptr codec, long count) {
  if (count <= 0) return;
  if (static_cast<std::size_t>(count) > codec->src->bytes_in_buffer)
    giveUp(reinterpret_cast<j_common_ptr>(codec));
  codec->src->next_input_byte += count;
  codec->src->bytes_in_buffer -= static_cast<std::size_t>(count);
}

// What follows takes chroma planes of one size, and none finer than luma.
bool hasUsualSampling(const jpeg_decompress_struct& codec) {
  const auto* c = codec.comp_info;
  const bool isLumaFinest =
      c[0].h_samp_factor == codec.max_h_samp_factor && c[0].v_samp_factor == codec.max_v_samp_factor;
  return isLumaFinest && (codec.num_components == 1 || (c[1].h_samp_factor == c[2].h_samp_factor &&
                                                        c[1].v_samp_factor == c[2].v_samp_factor));
}

bool canShow(jpeg_decompress_struct& codec) {
  const bool isYuv = codec.jpeg_color_space == JCS_YCbCr && codec.num_components == kComponents;
  const bool isGrey = codec.jpeg_color_space == JCS_GRAYSCALE && codec.num_components == 1;
  const bool isSane = codec.image_width <= kLargestJpegSide && codec.image_height <= kLargestJpegSide;
  return (isYuv || isGrey) && isSane && hasUsualSampling(codec) && !jpeg_has_multiple_scans(&codec);
}

int scaledRowsPerStep(const jpeg_component_info& component) {
#if JPEG_LIB_VERSION >= 70
  return component.v_samp_factor * component.DCT_v_scaled_size;
#else
  return component.v_samp_factor * component.DCT_scaled_size;
#endif
}

PixelSize sizeOf(const jpeg_component_info& component) {
  return {static_cast<int>(component.downsampled_width), static_cast<int>(component.downsampled_height)};
}

int paddedStride(const jpeg_component_info& component) {
  return (static_cast<int>(component.downsampled_width) + kRowPadding) / kRowPadding * kRowPadding +
         kRowPadding;
}

// Lays the planes out for whole steps of the decoder, whose last one may run past the picture.
void layOut(State& state) {
  auto& codec = state.codec;
  std::array<std::size_t, kComponents> offsets{};
  std::size_t total = 0;
  for (int i = 0; i < codec.num_components; ++i) {
    offsets[i] = total;
    total += static_cast<std::size_t>(paddedStride(codec.comp_info[i])) * codec.total_iMCU_rows *
             scaledRowsPerStep(codec.comp_info[i]);
  }
  const auto* memory = state.out->memory.take(total);
  Picture& picture = state.out->picture;
  picture = {PixelFormat::I420, sizeOf(codec.comp_info[0]), {}, {}, decideColor(PixelFormat::Mjpeg, {})};
  for (int i = 0; i < codec.num_components; ++i)
    picture.planes[i] = {memory + offsets[i], paddedStride(codec.comp_info[i])};
  if (codec.num_components == kComponents) picture.chromaSize = sizeOf(codec.comp_info[1]);
}

void readPlanes(State& state) {
  auto& codec = state.codec;
  auto* memory = state.out->memory.take(0);
  JSAMPROW rows[kComponents][kMostRowsPerStep];
  JSAMPARRAY planes[kComponents] = {rows[0], rows[1], rows[2]};
  for (std::size_t step = 0; codec.output_scanline < codec.output_height; ++step) {
    for (int i = 0; i < codec.num_components; ++i) {
      const Plane& plane = state.out->picture.planes[i];
      const int count = scaledRowsPerStep(codec.comp_info[i]);
      auto* first = memory + (plane.data - memory) + step * count * plane.stride;
      for (int y = 0; y < count; ++y) rows[i][y] = first + static_cast<std::ptrdiff_t>(y) * plane.stride;
    }
    const int most = codec.max_v_samp_factor * 2 * DCTSIZE;
    if (jpeg_read_raw_data(&codec, planes, static_cast<JDIMENSION>(most)) == 0) state.isDamaged = true;
    if (state.isDamaged || *state.isCalledOff) return;
  }
}

bool decodeWhole(State& state) {
  auto& codec = state.codec;
  jpeg_read_header(&codec, TRUE);
  if (!canShow(codec)) return false;
  codec.raw_data_out = TRUE;
  codec.out_color_space = codec.jpeg_color_space;
  codec.scale_num = 1;
  const PixelSize size = {static_cast<int>(codec.image_width), static_cast<int>(codec.image_height)};
  codec.scale_denom = static_cast<unsigned>(reductionFor(size, state.glass));
  jpeg_start_decompress(&codec);
  layOut(state);
  readPlanes(state);
  // What follows the picture is of no interest: the next frame begins anew.
  return !state.isDamaged && codec.output_scanline >= codec.output_height;
}

}  // namespace

JpegDecoder::JpegDecoder(const std::atomic<bool>& isCalledOff) : state_(std::make_unique<State>()) {
  auto& state = *state_;
  state.isCalledOff = &isCalledOff;
  state.codec.err = jpeg_std_error(&state.errors);
  state.errors.error_exit = giveUp;
  state.errors.emit_message = onMessage;
  state.errors.output_message = sayNothing;
  state.codec.client_data = &state;
  jpeg_create_decompress(&state.codec);
  state.source.init_source = startSource;
  state.source.fill_input_buffer = endOfFrame;
  state.source.skip_input_data = skipBytes;
  state.source.resync_to_restart = jpeg_resync_to_restart;
  state.source.term_source = startSource;
  state.codec.src = &state.source;
}

JpegDecoder::~JpegDecoder() { jpeg_destroy_decompress(&state_->codec); }

bool JpegDecoder::decode(std::span<const std::uint8_t> jpeg, PixelSize glass, OwnedPicture& out) {
  State& state = *state_;
  state.isDamaged = false;
  state.hasEnded = false;
  state.glass = glass;
  state.out = &out;
  state.source.next_input_byte = jpeg.data();
  state.source.bytes_in_buffer = jpeg.size();
  // Nothing that lives in this frame is read after the jump.
  const bool isWhole = setjmp(state.fatal) == 0 && decodeWhole(state);
  jpeg_abort_decompress(&state_->codec);
  return isWhole;
}

}  // namespace vistrel::camera
