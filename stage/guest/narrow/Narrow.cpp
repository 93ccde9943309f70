// Loaded before a program's own libraries: shows it a V4L2 camera with one pixel format and one size only,
// and with lines longer than they need be, as capture hardware gives them. What it is to show stands in the
// file that VISTREL_NARROW names, and may change: the format's four letters, WIDTHxHEIGHT, and the bytes that
// each line gets besides. Without the file nothing is narrowed.

#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <dlfcn.h>
#include <linux/videodev2.h>

namespace {

using Ioctl = int (*)(int, unsigned long, void*);

Ioctl realIoctl() {
  static const auto kFunction = reinterpret_cast<Ioctl>(dlsym(RTLD_NEXT, "ioctl"));
  return kFunction;
}

struct Shown {
  std::uint32_t format = 0;
  v4l2_frmsize_discrete size{};
  std::uint32_t padding = 0;
};

std::optional<Shown> shown() {
  const char* path = std::getenv("VISTREL_NARROW");
  std::FILE* file = path == nullptr ? nullptr : std::fopen(path, "re");
  if (file == nullptr) return std::nullopt;
  char name[5] = {};
  Shown result;
  const int read =
      std::fscanf(file, "%4s %ux%u %u", name, &result.size.width, &result.size.height, &result.padding);
  std::fclose(file);
  if (read != 4 || std::strlen(name) != 4) return std::nullopt;
  result.format = v4l2_fourcc(name[0], name[1], name[2], name[3]);
  return result;
}

/// The format that is left stands at index 0, wherever the driver has it.
int enumerate(int descriptor, v4l2_fmtdesc& wanted, std::uint32_t only) {
  v4l2_fmtdesc found{};
  found.type = wanted.type;
  for (; wanted.index == 0 && realIoctl()(descriptor, VIDIOC_ENUM_FMT, &found) == 0; ++found.index) {
    if (found.pixelformat != only) continue;
    wanted = found;
    wanted.index = 0;
    return 0;
  }
  errno = EINVAL;
  return -1;
}

int enumerate(v4l2_frmsizeenum& wanted, const v4l2_frmsize_discrete& only) {
  if (wanted.index > 0) {
    errno = EINVAL;
    return -1;
  }
  wanted.type = V4L2_FRMSIZE_TYPE_DISCRETE;
  wanted.discrete = only;
  return 0;
}

/// Drivers that can, take longer lines than they would choose themselves.
int set(int descriptor, unsigned long request, v4l2_format& format, std::uint32_t more) {
  const int result = realIoctl()(descriptor, request, &format);
  if (result != 0 || more == 0) return result;
  if (format.type == V4L2_BUF_TYPE_VIDEO_CAPTURE_MPLANE) {
    for (int i = 0; i < format.fmt.pix_mp.num_planes; ++i)
      format.fmt.pix_mp.plane_fmt[i].bytesperline += more;
  } else {
    format.fmt.pix.bytesperline += more;
  }
  return realIoctl()(descriptor, request, &format);
}

}  // namespace

extern "C" int ioctl(int descriptor, unsigned long longRequest, ...) noexcept {
  va_list arguments;
  va_start(arguments, longRequest);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  const auto request = static_cast<std::uint32_t>(longRequest);  // some callers have it as a signed int
  const bool isNarrowed =
      request == VIDIOC_ENUM_FMT || request == VIDIOC_ENUM_FRAMESIZES || request == VIDIOC_S_FMT;
  const auto only = isNarrowed ? shown() : std::nullopt;
  if (!only) return realIoctl()(descriptor, request, argument);
  if (request == VIDIOC_ENUM_FMT)
    return enumerate(descriptor, *static_cast<v4l2_fmtdesc*>(argument), only->format);
  if (request == VIDIOC_ENUM_FRAMESIZES)
    return enumerate(*static_cast<v4l2_frmsizeenum*>(argument), only->size);
  return set(descriptor, request, *static_cast<v4l2_format*>(argument), only->padding);
}
