#pragma once

#include "base/Log.h"

namespace vistrel::files {

/// Opens /dev/null on each of the descriptors 0 to 2 that the program was started without. To be called first
/// of all: else the next socket gets the number, and what is logged goes into it.
void holdStandardStreams();

/// Writes a line of the log without ever waiting for its reader: where the pipe is full or the terminal
/// stopped, the line is lost. What is longer than a pipe takes in one piece (PIPE_BUF) is cut.
void writeLogLine(Log::Stream stream, std::string_view line);

}  // namespace vistrel::files
