#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vistrel::stage {

using Bytes = std::vector<std::uint8_t>;

/// What the host controller wants: a transfer, or that a transfer is given up.
struct UsbRequest {
  std::uint32_t sequence = 0;
  /// Set where a transfer is given up: the one that is.
  std::optional<std::uint32_t> givenUp;
  bool isIn = false;
  std::uint32_t endpoint = 0;
  std::uint32_t length = 0;
  std::array<std::uint8_t, 8> setup{};
  Bytes data;
};

/// A device's end of the kernel's virtual USB host controller (vhci_hcd), over the USB/IP protocol's
/// messages. The device is plugged in as long as this lives.
class UsbIp {
 public:
  /// Plugs a high-speed device into a port of the first controller. None: `error` says why.
  static std::optional<UsbIp> attach(int port, std::string& error);
  UsbIp(UsbIp&& other) noexcept;
  UsbIp(const UsbIp&) = delete;
  UsbIp& operator=(const UsbIp&) = delete;
  UsbIp& operator=(UsbIp&&) = delete;
  ~UsbIp();

  [[nodiscard]] int descriptor() const { return socket_; }
  /// Waits for the next request. None: the controller has let go of the device.
  std::optional<UsbRequest> read();
  /// Ends a transfer that carries data to the host.
  void deliver(std::uint32_t sequence, std::span<const std::uint8_t> data);
  /// Ends a transfer that carried `length` bytes to the device.
  void acknowledge(std::uint32_t sequence, std::uint32_t length);
  /// Ends a control transfer that the device does not understand.
  void stall(std::uint32_t sequence);
  /// Answers a giving up; `wasWaiting`: the transfer will not be answered any more.
  void confirmGivingUp(std::uint32_t sequence, bool wasWaiting);

 private:
  explicit UsbIp(int socket) : socket_(socket) {}
  void answer(std::uint32_t command, std::uint32_t sequence, int status, std::uint32_t length);
  void write(const void* data, std::size_t length) const;
  [[nodiscard]] bool readWhole(void* data, std::size_t length) const;

  int socket_;
};

}  // namespace vistrel::stage
