#include "linux/keyboard/KeptShortcuts.h"

#include <QDBusMessage>

#include "linux/keyboard/KdeComponents.h"

namespace vistrel::keyboard {

void letKdeForget(const QString& id, const QDBusConnection& bus) {
  for (const auto component : kOurKdeComponents) {
    auto message = QDBusMessage::createMethodCall("org.kde.kglobalaccel", "/kglobalaccel",
                                                  "org.kde.KGlobalAccel", "unregister");
    message << QString::fromUtf8(component.data(), static_cast<qsizetype>(component.size())) << id;
    message.setAutoStartService(false);
    bus.send(message);
  }
}

}  // namespace vistrel::keyboard
