#include "linux/windows/QtAlert.h"

#include <QMessageBox>

#include "appkit/NSApplication.h"
#include "backend/Backend.h"
#include "base/Program.h"
#include "linux/qt/Icons.h"
#include "linux/qt/Palettes.h"

namespace vistrel::windows {

namespace {

constexpr int kIconSize = 64;

QMessageBox::Icon iconFor(NSAlertStyle style) {
  switch (style) {
    case NSAlertStyle::Informational:
      return QMessageBox::Information;
    case NSAlertStyle::Critical:
      return QMessageBox::Critical;
    case NSAlertStyle::Warning:
      break;
  }
  return QMessageBox::Warning;
}

NSAppearance appearanceNow() {
  return {backend::current().session().isDark() ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua};
}

void fill(QMessageBox& box, const NSAlert& alert) {
  box.setWindowTitle(program::kName);
  // What a screen reader says as the focus comes into it.
  box.setAccessibleName(QString::fromStdString(alert.messageText()));
  box.setAccessibleDescription(QString::fromStdString(alert.informativeText()));
  box.setTextFormat(Qt::PlainText);
  box.setText(QString::fromStdString(alert.messageText()));
  box.setInformativeText(QString::fromStdString(alert.informativeText()));
  box.setIcon(iconFor(alert.alertStyle()));
  if (!alert.icon()) return;
  const QColor color = box.palette().color(QPalette::WindowText);
  box.setIconPixmap(qt::drawn(*alert.icon(), {kIconSize, kIconSize}, box.devicePixelRatioF(), color));
}

}  // namespace

void showQtAlert(const std::shared_ptr<NSAlert>& alert, QWidget* parent) {
  auto* box = new QMessageBox(parent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setAttribute(Qt::WA_QuitOnClose, false);
  box->setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
  box->setPalette(parent ? parent->palette() : qt::paletteFor(appearanceNow()));
  box->setStandardButtons(QMessageBox::Ok);
  fill(*box, *alert);
  QObject::connect(box, &QMessageBox::finished, box,
                   [alert] { alert->respond(NSModalResponse::FirstButton); });
  // Gone with its window, without an answer of the user's.
  QObject::connect(box, &QObject::destroyed, [alert] { alert->respond(NSModalResponse::Abort); });
  box->show();
  box->raise();
  box->activateWindow();
}

}  // namespace vistrel::windows
