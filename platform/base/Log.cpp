#include "base/Log.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <utility>

#include "base/Unicode.h"

namespace vistrel {

namespace {

Log::Sink& sink() {
  static Log::Sink value;
  return value;
}

void writeAndWait(Log::Stream stream, std::string_view line) {
  std::FILE* file = stream == Log::Stream::Output ? stdout : stderr;
  std::fwrite(line.data(), 1, line.size(), file);
  std::fputc('\n', file);
  std::fflush(file);
}

Log::Writer& writer() {
  static Log::Writer value = writeAndWait;
  return value;
}

void reportFailure(std::string_view what, const char* reason) {
  Log::warning("vistrel: " + std::string(what) + " failed: " + reason);
}

}  // namespace

void Log::line(std::string_view text) {
  const std::string line = unicode::onOneLine(text);
  if (sink()) {
    sink()(line);
  } else {
    writer()(Stream::Output, line);
  }
}

void Log::warning(std::string_view text) { writer()(Stream::Error, unicode::onOneLine(text)); }

void Log::setWriter(Writer newWriter) { writer() = newWriter ? std::move(newWriter) : writeAndWait; }

void Log::setSink(Sink newSink) { sink() = std::move(newSink); }

void fatalError(std::string_view message) {
  std::fprintf(stderr, "Fatal error: %.*s\n", static_cast<int>(message.size()), message.data());
  std::fflush(nullptr);
  std::abort();
}

void runGuarded(std::string_view what, const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (const std::exception& failure) {
    reportFailure(what, failure.what());
  } catch (...) {
    reportFailure(what, "unknown reason");
  }
}

}  // namespace vistrel
