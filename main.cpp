#include "app/AppDelegate.h"
#include "linux/Desktop.h"

int main(int argc, char** argv) {
  int status = 0;
  const auto desktop = vistrel::desktop::Desktop::open(argc, argv, status);
  if (!desktop) return status;
  vistrel::backend::install(desktop.get());
  status = vistrel::runApplication();
  vistrel::backend::install(nullptr);
  return status;
}
