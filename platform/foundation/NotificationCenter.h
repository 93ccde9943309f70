#pragma once

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vistrel {

class NSObject;

using UserInfo = std::map<std::string, std::any>;

/// What an observer is told: the name, who posted it (or nobody), and what comes with it.
struct Notification {
  std::string name;
  const void* object = nullptr;
  UserInfo userInfo;
};

/// An observation in force. Its end, by `remove` or by its death, is the end of the observation; a second
/// removal does nothing.
class ObservationToken {
 public:
  ObservationToken() = default;
  ObservationToken(ObservationToken&&) noexcept = default;
  ObservationToken& operator=(ObservationToken&& other) noexcept;
  ~ObservationToken() { remove(); }

  void remove();
  [[nodiscard]] bool isActive() const;

 private:
  friend class NotificationCenter;
  struct Observation;
  explicit ObservationToken(std::shared_ptr<Observation> observation);
  std::shared_ptr<Observation> observation_;
};

/// In-process broadcast of named notifications. Observers run synchronously on the posting thread, in the
/// order in which they were added. A post goes over a snapshot: observers removed meanwhile are skipped, ones
/// added meanwhile are not called.
class NotificationCenter {
 public:
  using Handler = std::function<void(const Notification&)>;
  enum class Queue { PostingThread, Main };

  /// The application's own centre.
  static NotificationCenter& defaultCenter();

  /// Observes `name`, from `object` alone where one is given.
  [[nodiscard]] ObservationToken addObserver(const std::string& name, const void* object, Handler handler,
                                             Queue queue = Queue::PostingThread);
  void post(const std::string& name, const void* object = nullptr, UserInfo userInfo = {});

 private:
  std::vector<std::shared_ptr<ObservationToken::Observation>> observations_;
  void sweep();
};

/// The centre of notifications that the desktop posts to every program.
class DistributedNotificationCenter {
 public:
  static NotificationCenter& defaultCenter();
};

}  // namespace vistrel
