#include "linux/tray/TrayMenu.h"

#include <QAction>
#include <algorithm>
#include <utility>

#include "appkit/NSMenu.h"
#include "base/Program.h"
#include "linux/qt/MenuRows.h"

namespace vistrel::tray {

namespace {

// How long after a showing a host may still be working on the rows that were on screen.
constexpr std::chrono::milliseconds kSettleTime{250};

// An icon that registers with an empty menu gets the panel's own one instead.
const MenuRow kPlaceholder{MenuRow::Kind::Item, program::kName, {}};

MenuRow keyOf(const NSMenuItem& item) {
  if (item.isSeparatorItem()) return {MenuRow::Kind::Separator, {}, {}};
  return {MenuRow::Kind::Item, item.title(), item.action()};
}

std::vector<MenuRow> keysOf(const NSMenu& menu) {
  std::vector<MenuRow> keys;
  for (const auto& item : menu.itemArray()) keys.push_back(keyOf(*item));
  return keys;
}

// A row has room for a check mark when a row of the same action carries one: they are alternatives.
bool isAlternative(const NSMenuItem& item, const NSMenu& menu) {
  const auto& items = menu.itemArray();
  return std::any_of(items.begin(), items.end(), [&](const auto& other) {
    return other->action() == item.action() && other->state() == NSControlState::On;
  });
}

}  // namespace

TrayMenu::TrayMenu(Handlers handlers) : handlers_(std::move(handlers)) {
  qt::keepSeparators(native_);
  rows_.push_back(makeRow(kPlaceholder));
  rows_.back().action->setEnabled(false);
  native_.addAction(rows_.back().action);
  QObject::connect(&native_, &QMenu::aboutToShow, [this] { begin(); });
  QObject::connect(&native_, &QMenu::aboutToHide, [this] { end(); });
  QObject::connect(&native_, &QMenu::triggered, [this](QAction* action) { choose(action); });
}

void TrayMenu::didAttach() {
  for (const Row& row : rows_) row.action->setText(label(row.key));
}

void TrayMenu::mirror(std::shared_ptr<NSMenu> menu) {
  upcoming_ = std::move(menu);
  if (phase_ == Phase::Idle) apply();
}

// A menu of Qt's own is not laid out yet at this moment, a host's may be on screen already.
void TrayMenu::begin() {
  settling_.reset();
  phase_ = Phase::Beginning;
  handlers_.willOpen();
  if (upcoming_ && (hasRows(keysOf(*upcoming_)) || !isDrawnByHost() || !handlers_.isHostMenuSeen())) apply();
  phase_ = Phase::Showing;
}

void TrayMenu::end() {
  if (phase_ != Phase::Showing) return;
  applyLater();
  handlers_.didClose();
}

void TrayMenu::endShowing() {
  if (phase_ == Phase::Showing && !native_.isVisible()) applyLater();
}

void TrayMenu::choose(QAction* action) {
  const auto row = std::find_if(rows_.begin(), rows_.end(), [&](const Row& r) { return r.action == action; });
  if (row == rows_.end() || !row->item) return;
  const auto item = row->item;
  applyLater();
  handlers_.chosen(item);
}

void TrayMenu::applyLater() {
  phase_ = Phase::Settling;
  settling_ = std::make_unique<qt::SingleShot>(kSettleTime, [this] { settle(); });
}

// The host may show it again before it says so.
void TrayMenu::settle() {
  if (isDrawnByHost() && handlers_.isHostMenuSeen()) return applyLater();
  phase_ = Phase::Idle;
  apply();
}

void TrayMenu::apply() {
  if (!upcoming_) return;
  const auto menu = std::exchange(upcoming_, nullptr);
  const auto wanted = keysOf(*menu);
  if (!wanted.empty()) rebuild(*menu, wanted);
}

// New rows come before old ones go, so that the menu is at no time empty.
void TrayMenu::rebuild(const NSMenu& menu, const std::vector<MenuRow>& wanted) {
  std::vector<MenuRow> keys;
  for (const Row& row : rows_) keys.push_back(row.key);
  const auto before = std::exchange(rows_, {});
  for (const MenuStep& step : planMenu(keys, wanted)) {
    if (step.kind == MenuStep::Kind::Remove) continue;
    const bool isKept = step.kind == MenuStep::Kind::Keep;
    Row row = isKept ? before[step.present] : makeRow(wanted[step.wanted]);
    const auto& item = menu.itemArray()[step.wanted];
    present(row, item, isAlternative(*item, menu));
    if (!isKept)
      native_.insertAction(step.present < before.size() ? before[step.present].action : nullptr, row.action);
    rows_.push_back(row);
  }
  for (const Row& row : before) {
    const auto isSame = [&](const Row& kept) { return kept.action == row.action; };
    if (std::any_of(rows_.begin(), rows_.end(), isSame)) continue;
    native_.removeAction(row.action);
    row.action->deleteLater();
  }
}

TrayMenu::Row TrayMenu::makeRow(const MenuRow& key) {
  auto* action = new QAction(&native_);
  action->setSeparator(key.kind == MenuRow::Kind::Separator);
  if (key.kind == MenuRow::Kind::Item) action->setText(label(key));
  action->setMenuRole(QAction::NoRole);
  return {key, action, nullptr};
}

void TrayMenu::present(Row& row, const std::shared_ptr<NSMenuItem>& item, bool isCheckable) {
  row.item = item;
  row.action->setEnabled(!item->action().empty());
  row.action->setCheckable(isCheckable && !item->isSeparatorItem());
  row.action->setChecked(item->state() == NSControlState::On);
}

QString TrayMenu::label(const MenuRow& key) const {
  const QString text = qt::menuRowText(key.title);
  return isDrawnByHost() ? qt::labelForBusMenu(text) : qt::labelForQtMenu(text);
}

bool TrayMenu::isDrawnByHost() const { return const_cast<QMenu&>(native_).platformMenu() != nullptr; }

bool TrayMenu::hasRows(const std::vector<MenuRow>& wanted) const {
  return std::equal(rows_.begin(), rows_.end(), wanted.begin(), wanted.end(),
                    [](const Row& row, const MenuRow& key) { return row.key == key; });
}

}  // namespace vistrel::tray
