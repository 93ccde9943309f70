#include "foundation/NotificationCenter.h"

#include <utility>

#include "foundation/MainQueue.h"

namespace vistrel {

struct ObservationToken::Observation {
  std::string name;
  const void* object = nullptr;
  NotificationCenter::Handler handler;
  NotificationCenter::Queue queue = NotificationCenter::Queue::PostingThread;
  bool isActive = true;
};

ObservationToken::ObservationToken(std::shared_ptr<Observation> observation)
    : observation_(std::move(observation)) {}

ObservationToken& ObservationToken::operator=(ObservationToken&& other) noexcept {
  if (this != &other) {
    remove();
    observation_ = std::move(other.observation_);
  }
  return *this;
}

void ObservationToken::remove() {
  if (observation_) observation_->isActive = false;
  observation_.reset();
}

bool ObservationToken::isActive() const { return observation_ && observation_->isActive; }

NotificationCenter& NotificationCenter::defaultCenter() {
  static NotificationCenter center;
  return center;
}

ObservationToken NotificationCenter::addObserver(const std::string& name, const void* object, Handler handler,
                                                 Queue queue) {
  sweep();
  auto observation = std::make_shared<ObservationToken::Observation>();
  observation->name = name;
  observation->object = object;
  observation->handler = std::move(handler);
  observation->queue = queue;
  observations_.push_back(observation);
  return ObservationToken(observation);
}

void NotificationCenter::post(const std::string& name, const void* object, UserInfo userInfo) {
  const Notification notification{name, object, std::move(userInfo)};
  const auto snapshot = observations_;
  for (const auto& observation : snapshot) {
    if (!observation->isActive || observation->name != name) continue;
    if (observation->object && observation->object != object) continue;
    if (observation->queue == Queue::PostingThread) {
      observation->handler(notification);
    } else {
      MainQueue::async([observation, notification] {
        if (observation->isActive) observation->handler(notification);
      });
    }
  }
  sweep();
}

void NotificationCenter::sweep() {
  std::erase_if(observations_, [](const auto& observation) { return !observation->isActive; });
}

NotificationCenter& DistributedNotificationCenter::defaultCenter() {
  static NotificationCenter center;
  return center;
}

}  // namespace vistrel
