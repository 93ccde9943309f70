#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <pipewire/pipewire.h>
#include <spa/pod/builder.h>

#include "stage/camera/Options.h"
#include "stage/camera/OwnMemory.h"
#include "stage/camera/PictureSource.h"

namespace vistrel::stage {

/// A camera in user space: a PipeWire node of class Video/Source that does what its options and the commands
/// on standard input say. Writes one line an event to standard output.
class TestCamera {
 public:
  explicit TestCamera(Options options);
  TestCamera(const TestCamera&) = delete;
  TestCamera& operator=(const TestCamera&) = delete;
  ~TestCamera();

  /// Runs until it is told to end; answers the exit status.
  int run();

 private:
  static void stateChanged(void* self, pw_stream_state old, pw_stream_state state, const char* error);
  static void parameterChanged(void* self, std::uint32_t id, const spa_pod* parameter);
  static void bufferAdded(void* self, pw_buffer* buffer);
  static void bufferRemoved(void* self, pw_buffer* buffer);
  static void frameWanted(void* self);
  static void timerFired(void* self, std::uint64_t expirations);
  static void inputReady(void* self, int descriptor, std::uint32_t mask);

  [[nodiscard]] pw_loop* loop() const { return pw_main_loop_get_loop(mainLoop_); }
  void makeStream();
  void offerAnew();
  bool connect();
  void setTimer(bool isOn);
  void useFormat(const spa_pod* format);
  void announceBuffers();
  void obey(const std::string& line);
  bool carryOut(const std::string& command, const std::string& argument);
  void rename(const std::string& name);
  Look nextLook();

  Options options_;
  pw_main_loop* mainLoop_ = nullptr;
  spa_source* timer_ = nullptr;
  pw_stream* stream_ = nullptr;
  spa_hook listener_{};
  std::optional<OwnMemory> memory_;
  std::unique_ptr<PictureSource> source_;
  const Offer* drawn_ = nullptr;  ///< what `source_` draws, kept between streams: a camera is ready at once
  spa_fraction rate_{30, 1};
  std::uint32_t counter_ = 0;
  int latency_ = 0;
  bool isStalled_ = false;
  bool isGarbage_ = false;
  bool isStill_ = false;  ///< the same picture again and again
  int blackLeft_ = 0;
  std::string input_;
};

}  // namespace vistrel::stage
