// Any bytes through the reduced decoder and through libjpeg: both refuse them, or both make the same picture.
// The first byte chooses the scale, the rest is the frame.
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

// The library's header needs <cstdio> above it.
#include <jerror.h>
#include <jpeglib.h>

#include "linux/camera/JpegHeader.h"
#include "linux/camera/ReducedJpegDecoder.h"

namespace {

using namespace vistrel;
using camera::ReducedJpegDecoder;

constexpr std::size_t kPiece = 256;  // so short that the library looks at every code
constexpr int kMostSamples = 1 << 20;
constexpr int kMostCoefficient = 2047;  // beyond, the library's overflows depend on the processor
constexpr int kMostRows = 32;

/// libjpeg at its strictest: any warning but those about padding is a refusal. For one frame.
class Library {
 public:
  Library() {
    codec_.err = jpeg_std_error(&errors_);
    errors_.error_exit = [](j_common_ptr codec) { std::longjmp(of(codec).fatal_, 1); };
    errors_.emit_message = [](j_common_ptr codec, int level) {
      const int code = codec->err->msg_code;
      const bool isHarmless = code == JWRN_EXTRANEOUS_DATA || code == JWRN_JFIF_MAJOR;
      if (level < 0 && !isHarmless) std::longjmp(of(codec).fatal_, 1);
    };
    errors_.output_message = [](j_common_ptr) {};
    codec_.client_data = this;
    jpeg_create_decompress(&codec_);
    source_.init_source = source_.term_source = [](j_decompress_ptr) {};
    source_.fill_input_buffer = [](j_decompress_ptr codec) -> boolean {
      return of(reinterpret_cast<j_common_ptr>(codec)).fill();
    };
    source_.skip_input_data = [](j_decompress_ptr codec, long count) {
      of(reinterpret_cast<j_common_ptr>(codec)).skip(count);
    };
    source_.resync_to_restart = jpeg_resync_to_restart;
    codec_.src = &source_;
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { jpeg_destroy_decompress(&codec_); }

  /// True for a whole picture.
  bool decode(std::span<const std::uint8_t> jpeg, int reduction,
              std::vector<std::vector<std::uint8_t>>& planes) {
    if (setjmp(fatal_) != 0) return false;
    start(jpeg);
    codec_.raw_data_out = TRUE;
    codec_.out_color_space = codec_.jpeg_color_space;
    codec_.scale_num = 1;
    codec_.scale_denom = static_cast<unsigned>(reduction);
    jpeg_start_decompress(&codec_);
    read(planes);
    return true;
  }

  /// True for coefficients as a picture has them, whose samples mean something.
  bool hasSaneCoefficients(std::span<const std::uint8_t> jpeg) {
    if (setjmp(fatal_) != 0) return false;
    start(jpeg);
    return areSane(jpeg_read_coefficients(&codec_));
  }

  [[nodiscard]] PixelSize sizeOf(int component) const {
    const auto& info = codec_.comp_info[component];
    return {static_cast<int>(info.downsampled_width), static_cast<int>(info.downsampled_height)};
  }
  [[nodiscard]] int strideOf(int component) const {
    const auto& info = codec_.comp_info[component];
    return static_cast<int>(info.width_in_blocks + 4) * info.DCT_scaled_size;
  }

 private:
  static Library& of(j_common_ptr codec) { return *static_cast<Library*>(codec->client_data); }

  void start(std::span<const std::uint8_t> jpeg) {
    left_ = jpeg;
    hasEnded_ = false;
    source_.bytes_in_buffer = 0;
    jpeg_read_header(&codec_, TRUE);
  }

  boolean fill() {
    static constexpr JOCTET kEnd[] = {0xff, JPEG_EOI};
    const auto piece = left_.first(std::min(kPiece, left_.size()));
    if (piece.empty() && hasEnded_) std::longjmp(fatal_, 1);
    hasEnded_ = piece.empty();
    source_.next_input_byte = piece.empty() ? kEnd : piece.data();
    source_.bytes_in_buffer = piece.empty() ? sizeof kEnd : piece.size();
    left_ = left_.subspan(piece.size());
    return TRUE;
  }

  void skip(long count) {
    const auto wanted = static_cast<std::size_t>(std::max(0L, count));
    const std::size_t here = std::min(wanted, source_.bytes_in_buffer);
    source_.next_input_byte += here;
    source_.bytes_in_buffer -= here;
    if (wanted - here > left_.size()) std::longjmp(fatal_, 1);
    left_ = left_.subspan(wanted - here);
  }

  bool areSane(jvirt_barray_ptr* arrays) {
    for (int i = 0; i < codec_.num_components; ++i) {
      const auto& info = codec_.comp_info[i];
      for (JDIMENSION y = 0; y < info.height_in_blocks; ++y) {
        JBLOCKARRAY row =
            codec_.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&codec_), arrays[i], y, 1, FALSE);
        for (JDIMENSION x = 0; x < info.width_in_blocks; ++x)
          for (int k = 0; k < DCTSIZE2; ++k)
            if (std::abs(row[0][x][k] * int{info.quant_table->quantval[k]}) > kMostCoefficient) return false;
      }
    }
    return true;
  }

  void read(std::vector<std::vector<std::uint8_t>>& planes) {
    for (int i = 0; i < codec_.num_components; ++i) {
      const auto& info = codec_.comp_info[i];
      planes[static_cast<std::size_t>(i)].resize(
          static_cast<std::size_t>(strideOf(i)) * codec_.total_iMCU_rows *
          static_cast<std::size_t>(info.v_samp_factor * info.DCT_scaled_size));
    }
    JSAMPROW rows[3][kMostRows];
    JSAMPARRAY arrays[3] = {rows[0], rows[1], rows[2]};
    for (int step = 0; codec_.output_scanline < codec_.output_height; ++step) {
      for (int i = 0; i < codec_.num_components; ++i) {
        const int count = codec_.comp_info[i].v_samp_factor * codec_.comp_info[i].DCT_scaled_size;
        for (int y = 0; y < count; ++y)
          rows[i][y] =
              planes[static_cast<std::size_t>(i)].data() + std::ptrdiff_t{strideOf(i)} * (step * count + y);
      }
      jpeg_read_raw_data(&codec_, arrays, kMostRows);
    }
  }

  jpeg_decompress_struct codec_{};
  jpeg_error_mgr errors_{};
  jpeg_source_mgr source_{};
  std::jmp_buf fatal_{};
  std::span<const std::uint8_t> left_;
  bool hasEnded_ = false;
};

void check(bool isTrue, const char* what) {
  if (isTrue) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  if (length == 0) return 0;
  const int reduction = 2 << bytes[0] % 3;
  // In memory of its own, so that a byte beyond it is noticed.
  const std::vector<std::uint8_t> jpeg(bytes + 1, bytes + length);
  const auto header = camera::readJpegHeader(jpeg);
  if (!header || header->size.width * header->size.height > kMostSamples) return 0;
  const PixelSize glass = {(header->size.width + reduction - 1) / reduction,
                           (header->size.height + reduction - 1) / reduction};
  static ReducedJpegDecoder decoder;
  camera::OwnedPicture picture;
  const auto outcome = decoder.decode(jpeg, glass, picture);
  if (outcome == ReducedJpegDecoder::Outcome::Unsuitable) return 0;
  Library library;
  std::vector<std::vector<std::uint8_t>> planes(3);
  const int chosen = camera::reductionFor(header->size, glass);
  const bool isWhole = library.decode(jpeg, chosen, planes);
  check(isWhole == (outcome == ReducedJpegDecoder::Outcome::Decoded), "only one decoder refused it");
  const bool hasSamples = isWhole && Library().hasSaneCoefficients(jpeg);
  for (int i = 0; isWhole && i < header->componentCount(); ++i) {
    const PixelSize size = i == 0 ? picture.picture.size : picture.picture.chromaSize;
    check(size == library.sizeOf(i), "the sizes differ");
    for (int y = 0; hasSamples && y < size.height; ++y)
      check(std::memcmp(picture.picture.planes[static_cast<std::size_t>(i)].data +
                            std::ptrdiff_t{picture.picture.planes[static_cast<std::size_t>(i)].stride} * y,
                        planes[static_cast<std::size_t>(i)].data() + std::ptrdiff_t{library.strideOf(i)} * y,
                        static_cast<std::size_t>(size.width)) == 0,
            "the samples differ");
  }
  return 0;
}
