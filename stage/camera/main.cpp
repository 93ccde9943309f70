#include <cstdio>
#include <span>
#include <utility>

#include <pipewire/pipewire.h>

#include "stage/camera/TestCamera.h"

int main(int argc, char** argv) {
  auto options = vistrel::stage::Options::parse(std::span(argv + 1, static_cast<std::size_t>(argc) - 1));
  if (!options) {
    std::fputs(vistrel::stage::Options::kUsage, stderr);
    return 2;
  }
  pw_init(nullptr, nullptr);
  const int status = vistrel::stage::TestCamera(std::move(*options)).run();
  pw_deinit();
  return status;
}
