#include "linux/windows/ShellAccessible.h"

#include "backend/Backend.h"

namespace vistrel::windows {

namespace {

constexpr const char* kTearOff = "Tear off";
constexpr const char* kClose = "Close";

QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
  auto* shell = dynamic_cast<Shell*>(object);
  return shell ? new ShellAccessible(*shell) : nullptr;
}

QString translation(const char* text) {
  return QString::fromStdString(backend::current().resources().translation(text));
}

}  // namespace

ShellAccessible::ShellAccessible(Shell& shell)
    : QAccessibleWidget(&shell, QAccessible::Window), shell_(shell) {}

void ShellAccessible::install() {
  QAccessible::installFactory(makeAccessible);  // once, however often it is asked for
}

QStringList ShellAccessible::actionNames() const {
  return shell_.canBeTornOff() ? QStringList{kTearOff, kClose} : QStringList{kClose};
}

QString ShellAccessible::localizedActionName(const QString& name) const {
  if (name == kTearOff) return translation("Tear off");
  return name == kClose ? translation("Close") : QAccessibleWidget::localizedActionName(name);
}

void ShellAccessible::doAction(const QString& name) {
  if (name == kTearOff) return shell_.tearOff();
  if (name == kClose) shell_.close();
}

}  // namespace vistrel::windows
