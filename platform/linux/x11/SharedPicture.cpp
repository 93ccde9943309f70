#include "linux/x11/SharedPicture.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <utility>

#include "linux/FileDescriptor.h"
#include "linux/x11/X11Connection.h"

namespace vistrel::x11 {

namespace {

constexpr std::size_t kBytesPerPixel = 4;
constexpr std::pair kFirstWithFiles{1, 2};
constexpr std::uint32_t kRed = 0xff0000;
constexpr std::uint32_t kGreen = 0xff00;
constexpr std::uint32_t kBlue = 0xff;

bool sharesMemoryByFile(xcb_connection_t* connection) {
  const auto* extension = xcb_get_extension_data(connection, &xcb_shm_id);
  if (!extension || !extension->present) return false;
  const Reply<xcb_shm_query_version_reply_t> version(
      xcb_shm_query_version_reply(connection, xcb_shm_query_version(connection), nullptr));
  return version && std::pair<int, int>(version->major_version, version->minor_version) >= kFirstWithFiles;
}

// The kind of pixels that every screen of today has.
bool hasCommonPixels(const xcb_setup_t& setup, xcb_visualid_t wanted) {
  if (setup.image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST || std::endian::native != std::endian::little)
    return false;
  const auto& screen = *xcb_setup_roots_iterator(&setup).data;
  for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem; xcb_depth_next(&depth))
    for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem; xcb_visualtype_next(&visual)) {
      const auto& kind = *visual.data;
      if (kind.visual_id == wanted)
        return kind.red_mask == kRed && kind.green_mask == kGreen && kind.blue_mask == kBlue;
    }
  return false;
}

bool isPadded(const xcb_setup_t& setup, std::uint8_t depth) {
  for (auto format = xcb_setup_pixmap_formats_iterator(&setup); format.rem; xcb_format_next(&format))
    if (format.data->depth == depth) return format.data->bits_per_pixel == 8 * kBytesPerPixel;
  return false;
}

}  // namespace

std::unique_ptr<SharedPicture> SharedPicture::create(xcb_window_t window) {
  std::unique_ptr<SharedPicture> picture(new SharedPicture(xcb_connect(nullptr, nullptr), window));
  return picture->isUsable() ? std::move(picture) : nullptr;
}

SharedPicture::~SharedPicture() { release(); }

bool SharedPicture::isUsable() {
  auto* connection = connection_.get();
  if (xcb_connection_has_error(connection) != 0 || !sharesMemoryByFile(connection)) return false;
  const auto& setup = *xcb_get_setup(connection);
  const auto geometryAsked = xcb_get_geometry(connection, window_);
  const auto attributesAsked = xcb_get_window_attributes(connection, window_);
  const Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection, geometryAsked, nullptr));
  const Reply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(connection, attributesAsked, nullptr));
  if (!geometry || !attributes) return false;
  depth_ = geometry->depth;
  if (!hasCommonPixels(setup, attributes->visual) || !isPadded(setup, depth_)) return false;
  context_ = xcb_generate_id(connection);
  const std::uint32_t noExposures = 0;
  xcb_create_gc(connection, context_, window_, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
  return true;
}

std::uint8_t* SharedPicture::pixels(PixelSize size) {
  awaitServer();
  if (xcb_connection_has_error(connection_.get()) != 0) return nullptr;
  if (size != size_ && !allocate(size)) return nullptr;
  return memory_;
}

bool SharedPicture::allocate(PixelSize size) {
  release();
  const std::size_t bytes = kBytesPerPixel * size.width * size.height;
  const desktop::FileDescriptor file(::memfd_create("vistrel-picture", MFD_CLOEXEC));
  if (bytes == 0 || !file || ::ftruncate(file.get(), static_cast<off_t>(bytes)) != 0) return false;
  void* memory = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
  if (memory == MAP_FAILED) return false;
  memory_ = static_cast<std::uint8_t*>(memory);
  bytes_ = bytes;
  if (!share(file.get())) return release(), false;
  size_ = size;
  return true;
}

bool SharedPicture::share(int file) {
  constexpr std::uint8_t kReadOnly = 1;
  const int copy = ::fcntl(file, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return false;  // the library would wait for ever for the answer to what it cannot send
  segment_ = xcb_generate_id(connection_.get());
  // The library closes what it has sent.
  const auto cookie = xcb_shm_attach_fd_checked(connection_.get(), segment_, copy, kReadOnly);
  const Reply<xcb_generic_error_t> error(xcb_request_check(connection_.get(), cookie));
  if (error) segment_ = XCB_NONE;
  return !error;
}

void SharedPicture::release() {
  if (segment_ != XCB_NONE) xcb_shm_detach(connection_.get(), std::exchange(segment_, XCB_NONE));
  if (memory_) ::munmap(std::exchange(memory_, nullptr), bytes_);
  size_ = {};
}

void SharedPicture::draw(int x, int y) {
  auto* connection = connection_.get();
  const auto width = static_cast<std::uint16_t>(size_.width);
  const auto height = static_cast<std::uint16_t>(size_.height);
  xcb_shm_put_image(connection, window_, context_, width, height, 0, 0, width, height,
                    static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), depth_,
                    XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0);
  afterReading_ = xcb_get_input_focus(connection);
  isBeingRead_ = true;
  xcb_flush(connection);
}

// The cheapest question: its answer comes after everything before it was done.
void SharedPicture::awaitServer() {
  if (!std::exchange(isBeingRead_, false)) return;
  const Reply<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(connection_.get(), afterReading_, nullptr));
  // A window that has gone meanwhile makes an error of the drawing, which is nothing.
  while (const auto error = Reply<xcb_generic_event_t>(xcb_poll_for_queued_event(connection_.get()))) {
  }
}

}  // namespace vistrel::x11
