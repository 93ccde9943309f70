#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string_view>

#include <pipewire/pipewire.h>

namespace vistrel::stage {

/// How a camera that brings its own buffers gives them away: as PipeWire's V4L2 plugin does (`DmaBuf`, with a
/// file of memory in a device's place), as a file whose length is sealed, or in a way that no reader may
/// trust, or as something that no reader takes (`Foreign`).
enum class MemoryKind { DmaBuf, Sealed, Unsealed, Short, Shrinking, Foreign };

[[nodiscard]] std::optional<MemoryKind> memoryKindFromName(std::string_view name);

/// The buffers of a camera that allocates them itself.
class OwnMemory {
 public:
  explicit OwnMemory(MemoryKind kind) : kind_(kind) {}
  OwnMemory(const OwnMemory&) = delete;
  OwnMemory& operator=(const OwnMemory&) = delete;

  /// SPA_DATA_… of the blocks.
  [[nodiscard]] std::uint32_t dataType() const;
  /// Gives the buffer memory for `bytes`; false when the system has none.
  bool add(pw_buffer& buffer, std::size_t bytes);
  void remove(pw_buffer& buffer) { files_.erase(&buffer); }
  /// A frame was written; a shrinking camera takes the memory away now.
  void wrote(pw_buffer& buffer);

 private:
  struct File {
    explicit File(std::size_t size);
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File();
    int fd;
    std::size_t bytes;
    void* memory;
  };

  MemoryKind kind_;
  std::map<const pw_buffer*, std::unique_ptr<File>> files_;
};

}  // namespace vistrel::stage
