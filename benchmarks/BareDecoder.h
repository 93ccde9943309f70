#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

// The library's header needs <cstdio> above it.
#include <jpeglib.h>

namespace vistrel::bench {

/// The decoder's floor: the library's own decoding of a JPEG at one eighth, with nothing kept of it. For
/// frames that are known to be whole: the library ends the program on a broken one.
class BareDecoder {
 public:
  BareDecoder();
  BareDecoder(const BareDecoder&) = delete;
  BareDecoder& operator=(const BareDecoder&) = delete;
  ~BareDecoder() { jpeg_destroy_decompress(&codec_); }

  void decode(const std::uint8_t* bytes, std::size_t length);

 private:
  jpeg_decompress_struct codec_{};
  jpeg_error_mgr errors_{};
  std::vector<std::uint8_t> row_;
};

}  // namespace vistrel::bench
