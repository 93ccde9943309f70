#pragma once

#include <QMenu>
#include <functional>
#include <memory>
#include <vector>

#include "linux/qt/SingleShot.h"
#include "linux/tray/MenuPlan.h"

namespace vistrel {
class NSMenu;
class NSMenuItem;
}  // namespace vistrel

namespace vistrel::tray {

/// The native menu of the tray icon: what hosts that draw menus themselves show. It is changed row by row and
/// never empty. No row comes or goes while it may be on screen, nor for a moment after: a host then loses the
/// click, runs another row's action, or squeezes the new rows into the old window. Each row stands for the
/// item of the menu that was on screen with it.
class TrayMenu {
 public:
  struct Handlers {
    std::function<void()> willOpen;
    std::function<void()> didClose;
    std::function<void(std::shared_ptr<NSMenuItem>)> chosen;
    /// Whether a host's menu is on screen, for all that can be seen.
    std::function<bool()> isHostMenuSeen;
  };
  explicit TrayMenu(Handlers handlers);

  /// The native menu to hang on the icon.
  [[nodiscard]] QMenu& native() { return native_; }
  /// Call once the menu hangs on the icon: labels are written for whoever draws it.
  void didAttach();
  /// What to show from the next showing on.
  void mirror(std::shared_ptr<NSMenu> menu);
  /// Whether the tray host draws it, or Qt.
  [[nodiscard]] bool isDrawnByHost() const;
  /// Somebody pressed the icon: a showing whose close no host reported is over.
  void endShowing();
  /// The menu that the host drew is gone, as seen on the screen: some hosts do not report it.
  void hostMenuIsGone() { end(); }

 private:
  struct Row {
    MenuRow key;
    QAction* action = nullptr;
    std::shared_ptr<NSMenuItem> item;
  };

  void begin();
  void end();
  void applyLater();
  void settle();
  void apply();
  [[nodiscard]] bool hasRows(const std::vector<MenuRow>& wanted) const;
  void rebuild(const NSMenu& menu, const std::vector<MenuRow>& wanted);
  Row makeRow(const MenuRow& key);
  void present(Row& row, const std::shared_ptr<NSMenuItem>& item, bool isCheckable);
  void choose(QAction* action);
  [[nodiscard]] QString label(const MenuRow& key) const;

  enum class Phase { Idle, Beginning, Showing, Settling };

  Handlers handlers_;
  QMenu native_;
  std::vector<Row> rows_;
  std::shared_ptr<NSMenu> upcoming_;
  Phase phase_ = Phase::Idle;
  std::unique_ptr<qt::SingleShot> settling_;
};

}  // namespace vistrel::tray
