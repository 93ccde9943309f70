#include "foundation/Log.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string>
#include <utility>

namespace vistrel {

namespace {

Log::Sink& sink() {
  static Log::Sink value;
  return value;
}

// Names from outside may hold line feeds.
std::string onOneLine(std::string_view text) {
  std::string line(text);
  const auto breaks = [](char c) { return std::iscntrl(static_cast<unsigned char>(c)) != 0; };
  std::replace_if(line.begin(), line.end(), breaks, ' ');
  return line;
}

void write(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fputc('\n', stream);
  std::fflush(stream);
}

}  // namespace

void Log::line(std::string_view text) {
  const std::string line = onOneLine(text);
  if (sink()) {
    sink()(line);
  } else {
    write(stdout, line);
  }
}

void Log::warning(std::string_view text) { write(stderr, text); }

void Log::setSink(Sink newSink) { sink() = std::move(newSink); }

}  // namespace vistrel
