#include "foundation/MainQueue.h"

#include <utility>

#include "backend/Backend.h"

namespace vistrel {

namespace {
thread_local std::string queueLabel = "com.apple.main-thread";
}

void MainQueue::async(std::function<void()> work) { backend::current().mainLoop().post(std::move(work)); }

std::string DispatchQueue::currentLabel() { return queueLabel; }

void DispatchQueue::performAs(const std::string& label, const std::function<void()>& work) {
  const std::string before = std::exchange(queueLabel, label);
  work();
  queueLabel = before;
}

}  // namespace vistrel
