#include "app/Main.h"
#include "linux/qt/Desktop.h"

int main(int argc, char** argv) {
  int status = 0;
  const auto desktop = vistrel::qt::Desktop::open(argc, argv, status);
  if (!desktop) return status;
  vistrel::host::install(desktop.get());
  status = vistrel::runApplication();
  vistrel::host::install(nullptr);
  return status;
}
