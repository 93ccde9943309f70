#pragma once

#include <spa/buffer/buffer.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "linux/camera/Picture.h"

namespace vistrel::camera {

/// The memory of one buffer of a stream, as long as the stream has the buffer. What the library has not
/// mapped (before PipeWire 1.0.4 that is every DmaBuf) is mapped here, to be read only. Memory that its owner
/// could shorten under us counts as none: touching it would end the program.
class StreamBuffer {
 public:
  static constexpr std::size_t kMostBlocks = 3;

  explicit StreamBuffer(const spa_buffer& buffer);
  StreamBuffer(const StreamBuffer&) = delete;
  StreamBuffer& operator=(const StreamBuffer&) = delete;
  ~StreamBuffer();

  /// The present content of a block, by the figures of its producer, which are cut to the memory that is
  /// there. Empty for a block without trustworthy memory.
  [[nodiscard]] PlaneMemory content(std::size_t block) const;
  [[nodiscard]] std::size_t blockCount() const { return count_; }

 private:
  struct Block {
    std::span<const std::uint8_t> memory;
    void* mapping = nullptr;  ///< ours; null where the library mapped
    std::size_t mappedBytes = 0;
    const spa_chunk* chunk = nullptr;
  };
  static Block blockOf(const spa_data& data);

  std::array<Block, kMostBlocks> blocks_;
  std::size_t count_;
};

}  // namespace vistrel::camera
