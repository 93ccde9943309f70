#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "stage/camera/Evil.h"
#include "stage/camera/OwnMemory.h"
#include "stage/camera/RawPicture.h"

namespace vistrel::stage {

/// One thing that the camera can deliver: a layout (none is MJPEG), a size, and frames a second.
struct Offer {
  std::optional<PixelFormat> raw;
  std::string formatName;
  int width = 0;
  int height = 0;
  std::vector<int> rates;
};

enum class Picture { Plain, Rich, Person };
enum class Manner { Willing, Refusing, Silent };

struct Options {
  std::string name = "Test Camera";
  std::string nodeName = "testcam";
  std::vector<Offer> offers;
  std::vector<std::pair<std::string, std::string>> properties;
  int quality = 80;
  int blackFrames = 0;
  bool isContinuous = false;  ///< JPEG without restart markers
  Picture picture = Picture::Plain;
  Transform transform = Transform::None;
  Manner manner = Manner::Willing;
  std::optional<MemoryKind> memory;  ///< none: the daemon allocates
  std::optional<Evil> evil;
  bool isObeying = false;

  static constexpr const char* kUsage =
      "usage: vistrel-testcam [--name TEXT] [--node NAME] [--offer FORMAT:WIDTHxHEIGHT@RATE[/RATE...]]...\n"
      "                       [--property KEY=VALUE]... [--quality N] [--black FRAMES] [--rich] [--person] "
      "[--refuse]\n"
      "                       [--silent] [--memory KIND] [--evil LIE] [--transform TURN] [--continuous] "
      "[--obey]\n"
      "FORMAT: mjpeg yuy2 uyvy nv12 i420 yv12 rgb bgr rgbx bgrx.  --rich: detail, 1 to 2 MB at 4K MJPEG.\n"
      "--person: somebody to look at, with the clock as a thin strip.\n"
      "KIND: dmabuf sealed unsealed short shrinking foreign: the camera allocates its buffers, and how far\n"
      "they can be trusted.\n"
      "LIE: huge-stride negative-stride odd-stride long-size short-size no-size far-offset corrupted\n"
      "formats huge-formats renegotiates short-choice empty-values huge-values: what is wrong in what the\n"
      "camera says of its frames and formats.\n"
      "TURN: none 90 180 270 flipped flipped90 flipped180 flipped270: how a plain raw picture is turned\n"
      "before it is sent.\n"
      "--continuous: JPEG without restart markers, as most cameras send it; from 1600 columns on.\n"
      "--obey: commands on standard input, one a line, whose end is the end of the camera:\n"
      "  stall  resume  slow MS  rename TEXT  error TEXT  refuse  accept  garbage  black FRAMES  die  quit\n";

  /// None when the arguments make no sense.
  static std::optional<Options> parse(std::span<char*> arguments);
};

}  // namespace vistrel::stage
