#include "linux/camera/StreamBuffer.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace vistrel::camera {
namespace {

bool isFile(const spa_data& data) { return data.type == SPA_DATA_MemFd || data.type == SPA_DATA_DmaBuf; }

// A file of memory stays as long as it is when that is sealed. What cannot be sealed is a device's own
// memory, which has its length for life, or an ordinary file, which may be cut at any time.
bool keepsItsLength(int fd) {
  const int seals = ::fcntl(fd, F_GET_SEALS);
  if (seals >= 0) return (seals & F_SEAL_SHRINK) != 0;
  struct stat status{};
  return ::fstat(fd, &status) == 0 && !S_ISREG(status.st_mode);
}

bool holds(int fd, std::uint64_t bytes) {
  const off_t end = ::lseek(fd, 0, SEEK_END);
  return end >= 0 && static_cast<std::uint64_t>(end) >= bytes;
}

bool isTrustworthy(const spa_data& data) {
  if (data.maxsize == 0) return false;
  // Memory without a file lies in the block that the daemon sealed.
  if (!isFile(data)) return data.type == SPA_DATA_MemPtr && data.data;
  const int fd = static_cast<int>(data.fd);
  return keepsItsLength(fd) && holds(fd, std::uint64_t{data.mapoffset} + data.maxsize);
}

}  // namespace

StreamBuffer::Block StreamBuffer::blockOf(const spa_data& data) {
  if (!data.chunk || !isTrustworthy(data)) return {};
  if (data.data) return {{static_cast<const std::uint8_t*>(data.data), data.maxsize}, nullptr, 0, data.chunk};
  const auto page = static_cast<std::uint32_t>(::sysconf(_SC_PAGESIZE));
  const std::uint32_t lead = data.mapoffset % page;
  const std::size_t bytes = std::size_t{lead} + data.maxsize;
  void* mapping = ::mmap(nullptr, bytes, PROT_READ, MAP_SHARED, static_cast<int>(data.fd),
                         static_cast<off_t>(data.mapoffset - lead));
  if (mapping == MAP_FAILED) return {};
  return {{static_cast<const std::uint8_t*>(mapping) + lead, data.maxsize}, mapping, bytes, data.chunk};
}

StreamBuffer::StreamBuffer(const spa_buffer& buffer)
    : count_(std::min<std::size_t>(buffer.n_datas, kMostBlocks)) {
  for (std::size_t i = 0; i < count_; ++i) blocks_[i] = blockOf(buffer.datas[i]);
}

StreamBuffer::~StreamBuffer() {
  for (const Block& block : blocks_) {
    if (block.mapping) ::munmap(block.mapping, block.mappedBytes);
  }
}

PlaneMemory StreamBuffer::content(std::size_t block) const {
  const auto& [memory, mapping, mappedBytes, chunk] = blocks_[block];
  if (memory.empty()) return {};
  const std::size_t offset = std::min<std::size_t>(chunk->offset, memory.size());
  const std::size_t size = std::min<std::size_t>(chunk->size, memory.size() - offset);
  return {memory.subspan(offset, size), chunk->stride};
}

}  // namespace vistrel::camera
