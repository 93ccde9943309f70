#include "linux/session/ColorScheme.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QToolTip>
#include <utility>

namespace vistrel::session {

namespace {

constexpr const char* kKey = "color-scheme";
constexpr const char* kGnomeSchema = "org.gnome.desktop.interface";
constexpr uint kPreferDark = 1;
// A portal that is started by the question answers within a tenth of this. The program shows nothing before.
constexpr std::chrono::milliseconds kPatience{1000};

bool isPaletteDark() { return QApplication::palette().color(QPalette::Window).lightness() < 128; }

std::optional<bool> isDarkIn(const std::string& scheme) {
  if (scheme != "prefer-dark" && scheme != "prefer-light") return std::nullopt;
  return scheme == "prefer-dark";
}

}  // namespace

ColorScheme::ColorScheme(Handlers handlers)
    : handlers_(std::move(handlers)),
      patience_(std::make_unique<qt::SingleShot>(kPatience, [this] { learned(); })),
      portal_(kKey, [this](std::optional<uint> told) {
        if (!told) return useGnomeSetting();
        gnome_.reset();
        set(*told == kPreferDark);
      }) {
  qApp->installEventFilter(this);
  look();
}

void ColorScheme::useGnomeSetting() {
  if (!gnome_) gnome_ = GnomeSetting::open(kGnomeSchema, kKey, [this] { useGnomeSetting(); });
  set(gnome_ ? isDarkIn(gnome_->text()) : std::nullopt);
}

void ColorScheme::set(std::optional<bool> isToldDark) {
  const bool wasTold = std::exchange(isToldDark_, isToldDark).has_value();
  // Only without a palette of ours does Qt follow the desktop's.
  if (wasTold && !isToldDark) QApplication::setPalette(QPalette());
  look();
  learned();
}

// The palette changes by a word of the desktop, or because the desktop or a theme sets another.
bool ColorScheme::eventFilter(QObject* watched, QEvent* event) {
  if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
    QMetaObject::invokeMethod(this, [this] { look(); }, Qt::QueuedConnection);
  }
  return false;
}

void ColorScheme::look() {
  const bool wasDark = std::exchange(isDark_, isToldDark_.value_or(isPaletteDark()));
  const QPalette palette = qt::paletteFor(isDark_, handlers_.contrast());
  if (isToldDark_) QApplication::setPalette(palette);
  QToolTip::setPalette(palette);
  if (isDark_ != wasDark && !patience_) handlers_.didChange();
}

void ColorScheme::learned() {
  if (std::exchange(patience_, nullptr)) handlers_.didLearn();
}

}  // namespace vistrel::session
