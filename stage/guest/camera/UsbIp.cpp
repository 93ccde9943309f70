#include "stage/guest/camera/UsbIp.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

#include <endian.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vistrel::stage {
namespace {

constexpr const char* kController = "/sys/devices/platform/vhci_hcd.0/attach";
constexpr int kHighSpeed = 3;
constexpr int kBus = 1;
constexpr std::uint32_t kRetSubmit = 3;
constexpr std::uint32_t kCmdUnlink = 2;
constexpr std::uint32_t kRetUnlink = 4;
constexpr std::size_t kWords = 12;
constexpr std::size_t kSetupWord = 10;

using Header = std::array<std::uint32_t, kWords>;

}  // namespace

std::optional<UsbIp> UsbIp::attach(int port, std::string& error) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    error = std::strerror(errno);
    return std::nullopt;
  }
  UsbIp ours(ends[0]);
  errno = 0;
  std::ofstream controller(kController);
  controller << port << ' ' << ends[1] << ' ' << ((kBus << 16) | (port + 2)) << ' ' << kHighSpeed
             << std::flush;
  if (!controller) error = std::string(kController) + ": " + std::strerror(errno);
  close(ends[1]);
  if (!controller) return std::nullopt;
  return ours;
}

UsbIp::UsbIp(UsbIp&& other) noexcept : socket_(std::exchange(other.socket_, -1)) {}

UsbIp::~UsbIp() {
  if (socket_ >= 0) close(socket_);
}

std::optional<UsbRequest> UsbIp::read() {
  Header header{};
  if (!readWhole(header.data(), sizeof header)) return std::nullopt;
  UsbRequest request;
  request.sequence = be32toh(header[1]);
  if (be32toh(header[0]) == kCmdUnlink) {
    request.givenUp = be32toh(header[5]);
    return request;
  }
  request.isIn = be32toh(header[3]) != 0;
  request.endpoint = be32toh(header[4]);
  request.length = be32toh(header[6]);
  std::memcpy(request.setup.data(), &header[kSetupWord], request.setup.size());
  if (!request.isIn) {
    request.data.resize(request.length);
    if (!readWhole(request.data.data(), request.length)) return std::nullopt;
  }
  return request;
}

void UsbIp::deliver(std::uint32_t sequence, std::span<const std::uint8_t> data) {
  answer(kRetSubmit, sequence, 0, static_cast<std::uint32_t>(data.size()));
  write(data.data(), data.size());
}

void UsbIp::acknowledge(std::uint32_t sequence, std::uint32_t length) {
  answer(kRetSubmit, sequence, 0, length);
}

void UsbIp::stall(std::uint32_t sequence) { answer(kRetSubmit, sequence, -EPIPE, 0); }

void UsbIp::confirmGivingUp(std::uint32_t sequence, bool wasWaiting) {
  answer(kRetUnlink, sequence, wasWaiting ? -ECONNRESET : 0, 0);
}

void UsbIp::answer(std::uint32_t command, std::uint32_t sequence, int status, std::uint32_t length) {
  Header header{};
  header[0] = htobe32(command);
  header[1] = htobe32(sequence);
  header[5] = htobe32(static_cast<std::uint32_t>(status));
  header[6] = htobe32(length);
  write(header.data(), sizeof header);
}

void UsbIp::write(const void* data, std::size_t length) const {
  const auto* at = static_cast<const std::uint8_t*>(data);
  while (length > 0) {
    const ssize_t sent = send(socket_, at, length, MSG_NOSIGNAL);
    if (sent <= 0) return;  // the controller has gone, as the next read tells
    at += sent;
    length -= static_cast<std::size_t>(sent);
  }
}

bool UsbIp::readWhole(void* data, std::size_t length) const {
  return length == 0 || recv(socket_, data, length, MSG_WAITALL) == static_cast<ssize_t>(length);
}

}  // namespace vistrel::stage
