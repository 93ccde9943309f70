#include "linux/files/StandardStreams.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "linux/FileDescriptor.h"

namespace vistrel::files {
namespace {

TEST(StandardStreams, WaitForNoReader) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  const desktop::FileDescriptor reader(ends[0]);
  const desktop::FileDescriptor writer(ends[1]);
  const desktop::FileDescriptor error(::dup(STDERR_FILENO));
  ::dup2(writer.get(), STDERR_FILENO);
  const int room = ::fcntl(writer.get(), F_GETPIPE_SZ);
  const std::string line(1000, 'x');
  for (int i = 0; i < room / 500; ++i) writeLogLine(Log::Stream::Error, line);
  ::dup2(error.get(), STDERR_FILENO);
  std::string read(static_cast<std::size_t>(room), ' ');
  const ssize_t count = ::read(reader.get(), read.data(), read.size());
  ASSERT_GT(count, 0);
  // Whole lines, as many as there was room for.
  EXPECT_EQ(static_cast<std::size_t>(count) % (line.size() + 1), 0U);
}

}  // namespace
}  // namespace vistrel::files
