#include "LaunchAtLogin/LaunchAtLogin.h"

#include <algorithm>
#include <any>
#include <optional>
#include <string>

#include "base/Unicode.h"
#include "foundation/Bundle.h"
#include "foundation/ProcessInfo.h"
#include "servicemanagement/ServiceManagement.h"

namespace vistrel::LaunchAtLogin {

namespace {

constexpr const char* kLabelKey = "Label";
constexpr const char* kOnDemandKey = "OnDemand";
constexpr ProcessInfo::OperatingSystemVersion kFirstWithPublishers{10, 15, 0};

/// The identifier of the job that starts this program; none for a bundle without one, which cannot launch at
/// login.
const std::optional<std::string>& helperBundleIdentifier() {
  static const std::optional<std::string> identifier = [] {
    auto main = Bundle::main().identifier();
    if (main) *main += "-LaunchAtLoginHelper";
    return main;
  }();
  return identifier;
}

bool hasLabel(const JobDictionary& job, const std::string& identifier) {
  const auto label = job.find(kLabelKey);
  if (label == job.end()) return false;
  const auto* text = std::any_cast<std::string>(&label->second);
  return text && unicode::areEqual(*text, identifier);
}

bool isOnDemand(const JobDictionary& job) {
  const auto onDemand = job.find(kOnDemandKey);
  if (onDemand == job.end()) return false;
  const auto* value = std::any_cast<bool>(&onDemand->second);
  return value && *value;
}

CurrentValueSubject<bool>& subject() {
  static CurrentValueSubject<bool> value(isEnabled());
  return value;
}

bool hasPublishers() { return ProcessInfo::isOperatingSystemAtLeast(kFirstWithPublishers); }

}  // namespace

bool isEnabled() {
  const auto& identifier = helperBundleIdentifier();
  if (!identifier) return false;
  const auto jobs = SMCopyAllJobDictionaries(SMDomain::UserLaunchd);
  if (!jobs) return false;
  const auto helper =
      std::find_if(jobs->begin(), jobs->end(), [&](const auto& job) { return hasLabel(job, *identifier); });
  return helper != jobs->end() && isOnDemand(*helper);
}

void setEnabled(bool isEnabled) {
  if (hasPublishers()) sharedObservable()->sendObjectWillChange();
  sharedKVO()->willChangeValue(kIsEnabledKey);
  if (const auto& identifier = helperBundleIdentifier()) SMLoginItemSetEnabled(*identifier, isEnabled);
  sharedKVO()->didChangeValue(kIsEnabledKey);
  if (hasPublishers()) subject().send(isEnabled);
}

AnyPublisher<bool> publisher() { return subject().eraseToAnyPublisher(); }

const std::shared_ptr<Observable>& sharedObservable() {
  static const auto shared = std::make_shared<Observable>();
  return shared;
}

const std::shared_ptr<KVO>& sharedKVO() {
  static const auto shared = std::make_shared<KVO>();
  return shared;
}

}  // namespace vistrel::LaunchAtLogin
