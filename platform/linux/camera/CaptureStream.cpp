#include "linux/camera/CaptureStream.h"

#include <utility>

namespace vistrel::camera {
namespace {

// A dark room must not be mistaken for a camera that warms up for longer than this.
constexpr std::chrono::milliseconds kLongestWarmUp{500};
// What JPEG is decoded for until a window tells the size of its glass.
constexpr PixelSize kGlassUntilTold{426, 240};

}  // namespace

CaptureStream::CaptureStream(desktop::Reactor& reactor, std::unique_ptr<CaptureDevice> device)
    : reactor_(reactor),
      device_(std::move(device)),
      self_(std::make_shared<CaptureStream*>(this)),
      glass_(kGlassUntilTold) {}

CaptureStream::~CaptureStream() {
  *self_ = nullptr;
  stop();
}

bool CaptureStream::supports(PixelSize size) const { return supportsSize(device_->modes(), size); }

void CaptureStream::begin(std::optional<PixelSize> size, backend::CameraStreamClient& client) {
  stop();
  client_ = &client;
  isStarted_ = false;
  mode_ = size ? chooseMode(device_->modes(), *size) : chooseMode(device_->modes());
  if (!mode_) return failLater({translatable("The camera offers no picture format that can be shown.")});
  run();
}

void CaptureStream::run() {
  if (auto ready = prepareDecoder(); !ready) return mode_.reset(), failLater(ready.error());
  lastFrame_ = std::chrono::steady_clock::now();
  showing_ = Showing::WaitingForGoodFrame;
  device_->begin(*mode_, *this);
}

Result<void> CaptureStream::prepareDecoder() {
  if (mode_->format != PixelFormat::Mjpeg) return {};
  auto decoder = DecodeThread::start(reactor_, [this](auto outcome) { frameDecoded(outcome); });
  if (!decoder) return decoder.error();
  decoder_ = std::move(decoder).value();
  return {};
}

backend::StreamStart CaptureStream::awaitStart(std::chrono::milliseconds patience) {
  const auto start = mode_ ? device_->awaitStart(patience) : backend::StreamStart::Failed;
  isStarted_ = start == backend::StreamStart::Running;
  return start;
}

// The decoder gives up while the device stops, so that their times do not add up.
void CaptureStream::stop() {
  if (decoder_) decoder_->callOff();
  device_->stop();
  client_ = nullptr;
  reset();
}

std::chrono::milliseconds CaptureStream::silence() const {
  if (isAsleep_) return {};
  const auto silence = std::chrono::steady_clock::now() - lastFrame_;
  return std::chrono::duration_cast<std::chrono::milliseconds>(silence);
}

void CaptureStream::clearPicture() {
  if (showing_ == Showing::Picture) showing_ = Showing::WaitingForGoodFrame;
  hasUnpaintedPicture_ = false;
  tellGlass();
}

void CaptureStream::setAsleep(bool isAsleep) {
  if (!mode_ || isAsleep == isAsleep_) return;
  isAsleep_ = isAsleep;
  if (!isAsleep) return wake();
  if (decoder_) decoder_->callOff();
  device_->stop();
  const auto mode = mode_;
  reset();
  mode_ = mode;
  isAsleep_ = true;
  tellGlass();
}

// A device goes on to its frames once its start was waited for; a start that fails is told later.
void CaptureStream::wake() {
  run();
  if (mode_ && device_->awaitStart({}) == backend::StreamStart::Running) captureStarted();
}

PixelSize CaptureStream::pictureSize() const {
  return showing_ == Showing::Picture && mode_ ? orientation().turned(mode_->size) : PixelSize{};
}

void CaptureStream::setGlassSize(PixelSize size) {
  glass_ = size.width > 0 && size.height > 0 ? size : kGlassUntilTold;
}

void CaptureStream::setPictureHandler(std::function<void()> handler) {
  handler_ = std::move(handler);
  isGlassTold_ = false;
  if (showing_ == Showing::Picture) tellGlass();
}

bool CaptureStream::paint(const GlassTarget& target) {
  isGlassTold_ = false;
  const auto picture = newestPicture();
  if (picture && target.size.width > 0 && target.size.height > 0) converter_.convert(*picture, target);
  hasUnpaintedPicture_ = false;
  decodeNewest();
  return picture.has_value();
}

void CaptureStream::captureStarted() {
  if (!std::exchange(isStarted_, true)) client_->streamDidStart();
}

// Only what can be shown is a sign of life.
void CaptureStream::frameArrived() {
  hasUnusableFrames_ = true;
  if (decoder_) {
    // While the glass is covered a good picture waits in vain, and nothing is decoded.
    if (hasUnpaintedPicture_) noteUsable();
    hasUndecodedFrame_ = true;
    return decodeNewest();
  }
  const auto frame = device_->frame();
  if (const auto* picture = frame ? std::get_if<Picture>(&*frame) : nullptr; picture) {
    noteUsable();
    if (isFitToShow(*picture)) offerPicture();
  }
}

void CaptureStream::noteUsable() {
  lastFrame_ = std::chrono::steady_clock::now();
  hasSentPicture_ = true;
  hasUnusableFrames_ = false;
}

void CaptureStream::captureFailed(const Error& error) {
  auto* client = std::exchange(client_, nullptr);
  reset();
  tellGlass();
  if (client) client->streamDidFail(error);
}

void CaptureStream::decodeNewest() {
  if (!decoder_ || !decoder_->isIdle() || !hasUndecodedFrame_ || hasUnpaintedPicture_) return;
  hasUndecodedFrame_ = false;
  const auto frame = device_->frame();
  const auto* jpeg = frame ? std::get_if<std::span<const std::uint8_t>>(&*frame) : nullptr;
  if (!jpeg) return;
  decoding_ = device_->orientation();
  decoder_->decode(*jpeg, decoding_.turned(glass_));
}

void CaptureStream::frameDecoded(DecodeThread::Outcome outcome) {
  if (outcome == DecodeThread::Outcome::Decoded) {
    noteUsable();
    decoded_ = decoding_;
  }
  if (outcome == DecodeThread::Outcome::Decoded && isFitToShow(decoder_->picture())) {
    hasUnpaintedPicture_ = true;
    return offerPicture();
  }
  decodeNewest();
}

bool CaptureStream::isFitToShow(const Picture& picture) {
  if (showing_ == Showing::Picture) return true;
  const auto now = std::chrono::steady_clock::now();
  if (!firstFrame_) firstFrame_ = now;
  return now - *firstFrame_ >= kLongestWarmUp || !isBlank(picture);
}

void CaptureStream::offerPicture() {
  showing_ = Showing::Picture;
  tellGlass();
}

void CaptureStream::tellGlass() {
  if (!handler_ || isGlassTold_) return;
  isGlassTold_ = showing_ == Showing::Picture;  // of an empty glass nothing is painted
  handler_();
}

std::optional<Picture> CaptureStream::newestPicture() const {
  if (showing_ != Showing::Picture) return std::nullopt;
  const auto frame = decoder_ ? std::optional<Frame>(decoder_->picture()) : device_->frame();
  const auto* found = frame ? std::get_if<Picture>(&*frame) : nullptr;
  if (!found) return std::nullopt;
  Picture picture = *found;
  picture.orientation = orientation();
  return picture;
}

Orientation CaptureStream::orientation() const { return decoder_ ? decoded_ : device_->orientation(); }

// The client must not hear of a failure from inside its own call.
void CaptureStream::failLater(Error error) {
  reactor_.post([self = std::weak_ptr(self_), error = std::move(error)] {
    const auto stream = self.lock();
    if (stream && *stream && (*stream)->client_) (*stream)->captureFailed(error);
  });
}

void CaptureStream::reset() {
  decoder_.reset();
  mode_.reset();
  isAsleep_ = false;
  showing_ = Showing::Nothing;
  firstFrame_.reset();
  hasSentPicture_ = false;
  hasUnusableFrames_ = false;
  hasUndecodedFrame_ = false;
  hasUnpaintedPicture_ = false;
}

}  // namespace vistrel::camera
