#include "linux/session/Lid.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QVariant>
#include <fstream>
#include <string>

#include "linux/session/Logind.h"

namespace vistrel::session {

namespace {

// In milliseconds. The mirror opens meanwhile; logind answers within one.
constexpr int kPatience = 50;

}  // namespace

// logind tells no change of the lid to those who listen, so it is asked each time.
bool Lid::isClosed() const {
  const auto bus = QDBusConnection::systemBus();
  if (!bus.isConnected()) return isClosedByKernel();
  auto question = QDBusMessage::createMethodCall(logind::kService, logind::kPath,
                                                 "org.freedesktop.DBus.Properties", "Get");
  question << logind::kManager << "LidClosed";
  question.setAutoStartService(false);
  const QDBusReply<QVariant> answer = bus.call(question, QDBus::Block, kPatience);
  return answer.isValid() ? answer.value().toBool() : isClosedByKernel();
}

bool Lid::isClosedByKernel() const {
  std::error_code error;
  for (const auto& button : std::filesystem::directory_iterator(buttons_, error)) {
    std::ifstream file(button.path() / "state");  // "state:      closed"
    std::string key;
    std::string state;
    if (file >> key >> state && state == "closed") return true;
  }
  return false;
}

}  // namespace vistrel::session
