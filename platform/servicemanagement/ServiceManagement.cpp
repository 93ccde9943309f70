#include "servicemanagement/ServiceManagement.h"

#include "backend/Backend.h"
#include "base/Log.h"

namespace vistrel {

std::optional<std::vector<JobDictionary>> SMCopyAllJobDictionaries(SMDomain /*domain*/) {
  const auto items = backend::current().loginItems().items();
  if (!items) return std::nullopt;
  std::vector<JobDictionary> jobs;
  for (const auto& item : items.value()) {
    JobDictionary& job = jobs.emplace_back();
    job["Label"] = item.label;
    if (item.isEnabled) job["OnDemand"] = true;
  }
  return jobs;
}

bool SMLoginItemSetEnabled(const std::string& identifier, bool isEnabled) {
  const auto outcome = backend::current().loginItems().setEnabled(identifier, isEnabled);
  if (!outcome) Log::warning("vistrel: the login item cannot be written: " + outcome.error().message);
  return static_cast<bool>(outcome);
}

}  // namespace vistrel
