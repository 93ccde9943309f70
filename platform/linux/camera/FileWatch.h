#pragma once

#include <functional>
#include <memory>
#include <string>

#include "linux/FileDescriptor.h"
#include "linux/Reactor.h"

namespace vistrel::camera {

/// Watches a folder for files that appear, disappear or change their permissions.
class FileWatch {
 public:
  enum class Change { Appeared, Disappeared, Permissions };
  using Handler = std::function<void(const std::string& name, Change change)>;

  /// `handler` is called from the main loop with the name of the file. A folder that cannot be watched is
  /// silent.
  FileWatch(desktop::Reactor& reactor, const std::string& folder, Handler handler);

  /// Takes in what has happened already, without waiting for the main loop.
  void drain();

 private:
  Handler handler_;
  desktop::FileDescriptor inotify_;
  std::unique_ptr<desktop::Registration> registration_;
};

}  // namespace vistrel::camera
