#include "linux/camera/CaptureStream.h"

#include <gtest/gtest.h>

#include "JpegEncoder.h"
#include "tests/unit/linux/NoThreads.h"
#include "tests/unit/linux/PollReactor.h"

namespace vistrel::camera {
namespace {

constexpr PixelSize kSize{64, 48};
constexpr std::size_t kFrameBytes = 6144;  // of packed 4:2:2
constexpr PixelSize kGlass{8, 6};

/// A device whose frames the test hands in.
class FakeDevice final : public CaptureDevice {
 public:
  explicit FakeDevice(PixelFormat format) : modes_{{format, 0, kSize, kSize, {1, 1}, {{30, 1}}, false}} {}

  [[nodiscard]] const std::vector<VideoMode>& modes() const override { return modes_; }
  void begin(const ModeChoice&, CaptureClient& client) override { client_ = &client; }
  backend::StreamStart awaitStart(std::chrono::milliseconds) override {
    return backend::StreamStart::Running;
  }
  void stop() override { client_ = nullptr; }
  [[nodiscard]] std::optional<Frame> frame() const override {
    ++looks;
    if (bytes_.empty()) return std::nullopt;
    if (modes_[0].format == PixelFormat::Mjpeg) return std::span<const std::uint8_t>(bytes_);
    const PlaneMemory memory{bytes_, 0};
    return pictureIn({&memory, 1}, modes_[0].format, kSize, YuvColor::Bt601Limited).value();
  }

  void deliver(std::vector<std::uint8_t> bytes) {
    bytes_ = std::move(bytes);
    client_->frameArrived();
  }
  void fail(const char* text) { client_->captureFailed({text}); }
  [[nodiscard]] Orientation orientation() const override { return turn; }

  mutable int looks = 0;
  Orientation turn;

 private:
  std::vector<VideoMode> modes_;
  CaptureClient* client_ = nullptr;
  std::vector<std::uint8_t> bytes_;
};

class CaptureStreamTest : public testing::Test, public backend::CameraStreamClient {
 protected:
  void open(PixelFormat format) {
    auto device = std::make_unique<FakeDevice>(format);
    device_ = device.get();
    stream_ = std::make_unique<CaptureStream>(reactor_, std::move(device));
    stream_->setGlassSize(kGlass);
    stream_->setPictureHandler([this] { ++told_; });
    stream_->begin(kSize, *this);
    EXPECT_EQ(stream_->awaitStart({}), backend::StreamStart::Running);
  }
  void streamDidStart() override {}
  void streamDidFail(const Error& error) override { failures_.push_back(error.message); }

  bool paint() { return stream_->paint({pixels_.data(), 8 * 4, kGlass, false}); }
  static std::vector<std::uint8_t> grey(std::uint8_t luma) {
    std::vector<std::uint8_t> bytes(kFrameBytes, 128);
    for (std::size_t i = 0; i < bytes.size(); i += 2) bytes[i] = luma;
    return bytes;
  }
  bool waitForTold(int count) {
    return reactor_.runUntil([&] { return told_ >= count; });
  }

  desktop::PollReactor reactor_;
  FakeDevice* device_ = nullptr;
  std::unique_ptr<CaptureStream> stream_;
  std::vector<std::uint8_t> pixels_ = std::vector<std::uint8_t>(192);
  int told_ = 0;
  std::vector<std::string> failures_;
};

TEST_F(CaptureStreamTest, ShowsNothingBeforeTheFirstGoodFrame) {
  open(PixelFormat::Yuy2);
  device_->deliver(grey(16));
  device_->deliver(std::vector<std::uint8_t>(kFrameBytes, 0));
  EXPECT_EQ(stream_->pictureSize(), PixelSize{});
  EXPECT_FALSE(paint());
  device_->deliver(grey(126));
  EXPECT_EQ(stream_->pictureSize(), kSize);
  EXPECT_EQ(told_, 1);
  EXPECT_TRUE(paint());
  EXPECT_NEAR(pixels_[0], 128, 2);
}

TEST_F(CaptureStreamTest, TurnsThePictureUpright) {
  for (const PixelFormat format : {PixelFormat::Yuy2, PixelFormat::Mjpeg}) {
    open(format);
    device_->turn.isTransposed = true;
    told_ = 0;
    device_->deliver(format == PixelFormat::Yuy2 ? grey(126) : testJpeg(kSize, JpegSampling::Yuv422));
    EXPECT_TRUE(waitForTold(1));
    EXPECT_EQ(stream_->pictureSize(), (PixelSize{kSize.height, kSize.width}));
    EXPECT_TRUE(paint());
    if (format == PixelFormat::Yuy2) continue;
    const auto blue = [this](std::size_t x, std::size_t y) { return pixels_[4 * (8 * y + x)]; };
    EXPECT_LT(blue(7, 0), blue(0, 5));
  }
}

TEST_F(CaptureStreamTest, TellsTheGlassOnceUntilItPaintsTheNewestFrame) {
  open(PixelFormat::Yuy2);
  for (const int luma : {60, 80, 235}) device_->deliver(grey(static_cast<std::uint8_t>(luma)));
  EXPECT_EQ(told_, 1);
  EXPECT_TRUE(paint());
  EXPECT_EQ(pixels_[0], 255);
  device_->deliver(grey(60));
  EXPECT_EQ(told_, 2);
}

TEST_F(CaptureStreamTest, DropsThePictureWhenClearedAndWhenTheDeviceFails) {
  open(PixelFormat::Yuy2);
  device_->deliver(grey(60));
  EXPECT_TRUE(paint());
  stream_->clearPicture();
  EXPECT_EQ(told_, 2);
  EXPECT_EQ(stream_->pictureSize(), PixelSize{});
  EXPECT_FALSE(paint());
  device_->deliver(grey(60));
  EXPECT_TRUE(paint());
  device_->fail("unplugged");
  EXPECT_EQ(told_, 4);
  EXPECT_FALSE(paint());
  EXPECT_EQ(failures_, std::vector<std::string>{"unplugged"});
}

TEST_F(CaptureStreamTest, ReportsASizeThatNoModeHasFromTheMainLoop) {
  open(PixelFormat::Yuy2);
  stream_->begin(PixelSize{1, 1}, *this);
  EXPECT_EQ(stream_->awaitStart({}), backend::StreamStart::Failed);
  EXPECT_TRUE(failures_.empty());
  EXPECT_TRUE(reactor_.runUntil([&] { return !failures_.empty(); }));
}

TEST_F(CaptureStreamTest, ReportsThatThereIsNoThreadToDecodeOn) {
  open(PixelFormat::Mjpeg);
  const test::NoThreads none;
  stream_->begin(kSize, *this);
  EXPECT_EQ(stream_->awaitStart({}), backend::StreamStart::Failed);
  EXPECT_TRUE(reactor_.runUntil([&] { return !failures_.empty(); }));
}

TEST_F(CaptureStreamTest, DropsDamagedJpegAndShowsTheNext) {
  open(PixelFormat::Mjpeg);
  auto cut = testJpeg(kSize, JpegSampling::Yuv422);
  cut.resize(cut.size() / 2);
  device_->deliver(cut);
  device_->deliver({1, 2, 3});
  device_->deliver(testJpeg(kSize, JpegSampling::Yuv422));
  EXPECT_TRUE(waitForTold(1));
  EXPECT_EQ(stream_->pictureSize(), kSize);
  EXPECT_TRUE(paint());
}

TEST_F(CaptureStreamTest, DecodesNoJpegThatWouldNotBePainted) {
  open(PixelFormat::Mjpeg);
  const auto jpeg = testJpeg(kSize, JpegSampling::Yuv420);
  device_->deliver(jpeg);
  EXPECT_TRUE(waitForTold(1));
  for (int i = 0; i < 10; ++i) device_->deliver(jpeg);
  EXPECT_EQ(device_->looks, 1);
  EXPECT_TRUE(paint());  // which takes the newest of the ten
  EXPECT_TRUE(waitForTold(2));
  EXPECT_EQ(device_->looks, 2);
}

TEST_F(CaptureStreamTest, StopsWhileAFrameIsBeingDecoded) {
  for (int i = 0; i < 20; ++i) {
    open(PixelFormat::Mjpeg);
    device_->deliver(testJpeg({640, 480}, JpegSampling::Yuv420));
    if (i % 2) reactor_.turn({});
    stream_->stop();
    EXPECT_EQ(stream_->pictureSize(), PixelSize{});
  }
}

}  // namespace
}  // namespace vistrel::camera
