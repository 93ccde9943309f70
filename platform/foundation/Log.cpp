#include "foundation/Log.h"

#include <cstdio>
#include <utility>

namespace vistrel {

namespace {

Log::Sink& sink() {
  static Log::Sink value;
  return value;
}

void write(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fputc('\n', stream);
  std::fflush(stream);
}

}  // namespace

void Log::line(std::string_view text) {
  if (sink()) {
    sink()(text);
  } else {
    write(stdout, text);
  }
}

void Log::warning(std::string_view text) { write(stderr, text); }

void Log::setSink(Sink newSink) { sink() = std::move(newSink); }

}  // namespace vistrel
