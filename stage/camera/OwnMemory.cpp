#include "stage/camera/OwnMemory.h"

#include <array>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace vistrel::stage {
namespace {

constexpr std::array<std::pair<std::string_view, MemoryKind>, 6> kNames = {
    {{"dmabuf", MemoryKind::DmaBuf},
     {"sealed", MemoryKind::Sealed},
     {"unsealed", MemoryKind::Unsealed},
     {"short", MemoryKind::Short},
     {"shrinking", MemoryKind::Shrinking},
     {"foreign", MemoryKind::Foreign}}};

bool isSealed(MemoryKind kind) { return kind == MemoryKind::DmaBuf || kind == MemoryKind::Sealed; }

}  // namespace

std::optional<MemoryKind> memoryKindFromName(std::string_view name) {
  for (const auto& [known, kind] : kNames) {
    if (known == name) return kind;
  }
  return std::nullopt;
}

OwnMemory::File::File(std::size_t size)
    : fd(::memfd_create("testcam", MFD_CLOEXEC | MFD_ALLOW_SEALING)), bytes(size), memory(MAP_FAILED) {
  if (fd < 0 || ::ftruncate(fd, static_cast<off_t>(size)) != 0) return;
  memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
}

OwnMemory::File::~File() {
  if (memory != MAP_FAILED) ::munmap(memory, bytes);
  if (fd >= 0) ::close(fd);
}

std::uint32_t OwnMemory::dataType() const {
  if (kind_ == MemoryKind::Foreign) return SPA_DATA_MemId;
  return kind_ == MemoryKind::DmaBuf ? SPA_DATA_DmaBuf : SPA_DATA_MemFd;
}

bool OwnMemory::add(pw_buffer& buffer, std::size_t bytes) {
  auto file = std::make_unique<File>(bytes);
  if (file->memory == MAP_FAILED) return false;
  if (isSealed(kind_)) ::fcntl(file->fd, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW);
  spa_data& data = buffer.buffer->datas[0];
  data.type = dataType();
  data.flags = SPA_DATA_FLAG_READWRITE;
  data.fd = file->fd;
  data.mapoffset = 0;
  // A short one says that it has twice the room that it has; its own writes stay in what is there.
  data.maxsize = static_cast<std::uint32_t>(kind_ == MemoryKind::Short ? 2 * bytes : bytes);
  data.data = file->memory;
  files_.insert_or_assign(&buffer, std::move(file));
  return true;
}

void OwnMemory::wrote(pw_buffer& buffer) {
  const auto found = files_.find(&buffer);
  if (kind_ != MemoryKind::Shrinking || found == files_.end()) return;
  if (::ftruncate(found->second->fd, 0) == 0) buffer.buffer->datas[0].data = nullptr;
}

}  // namespace vistrel::stage
