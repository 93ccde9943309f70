#include "base/Log.h"

#include <cstdio>
#include <string>
#include <utility>

#include "base/Unicode.h"

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
  const std::string line = unicode::onOneLine(text);
  if (sink()) {
    sink()(line);
  } else {
    write(stdout, line);
  }
}

void Log::warning(std::string_view text) { write(stderr, unicode::onOneLine(text)); }

void Log::setSink(Sink newSink) { sink() = std::move(newSink); }

}  // namespace vistrel
