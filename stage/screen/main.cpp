#include <cstdio>
#include <iostream>
#include <sstream>

#include "stage/screen/Commands.h"

namespace {

bool answer(const vistrel::stage::Commands& commands, const vistrel::stage::Words& words) {
  const nlohmann::json result = commands.perform(words);
  std::puts(result.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
  std::fflush(stdout);
  return !result.contains("error");
}

}  // namespace

/// With arguments: one command. Without: one command a line of standard input, one answer a line.
int main(int argc, char** argv) {
  const vistrel::stage::Screen screen;
  const vistrel::stage::Commands commands(screen);
  if (argc > 1) return answer(commands, vistrel::stage::Words(argv + 1, argv + argc)) ? 0 : 1;
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream stream(line);
    answer(commands, {std::istream_iterator<std::string>(stream), std::istream_iterator<std::string>()});
  }
  return 0;
}
