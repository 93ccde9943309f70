// The shortcuts: from a hot key's release to its action, and what the recorder asks for each key pressed.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "appkit/NSMenu.h"
#include "base/KeyCodes.h"
#include "linux/keyboard/HotKeyGrabs.h"
#include "linux/keyboard/X11Keyboard.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/unit/linux/PollReactor.h"

namespace vistrel::bench {
namespace {

using KeyboardShortcuts::Shortcut;

constexpr int kMenuItems = 1000;
constexpr std::uint32_t kDesktopShortcuts = 300;

/// A simulated desktop with the layout of a real keyboard and many shortcuts of its own.
class BusyDesktop final : public simulated::SimulatedDesktop, backend::Keyboard {
 public:
  explicit BusyDesktop(backend::Keyboard& real) : SimulatedDesktop(""), real_(real) {
    for (std::uint32_t i = 0; i < kDesktopShortcuts; ++i) shortcuts_.push_back({i % 100, cmdKey});
  }
  backend::Keyboard& keyboard() override { return *this; }
  std::optional<std::string> displayCharacter(std::uint16_t keyCode) override {
    return real_.displayCharacter(keyCode);
  }
  std::optional<std::vector<backend::HotKeyCombination>> symbolicHotKeys() override { return shortcuts_; }
  void beep() override {}
  bool setKeyboardCaptured(bool) override { return false; }

 private:
  backend::Keyboard& real_;
  std::vector<backend::HotKeyCombination> shortcuts_;
};

void releaseToAction(benchmark::State& state) {
  simulated::SimulatedDesktop desktop("");
  const KeyboardShortcuts::Name name("toggle");
  KeyboardShortcuts::setShortcut(Shortcut(kVK_Space, cmdKey), name);
  int runs = 0;
  KeyboardShortcuts::onKeyUp(name, [&runs] { ++runs; });
  for ([[maybe_unused]] auto _ : state)
    desktop.simulatedHotKeys.send({kVK_Space, cmdKey}, backend::HotKeyPhase::Released);
  if (runs == 0) state.SkipWithError("the action never ran");
}

void translation(benchmark::State& state) {
  desktop::PollReactor reactor;
  x11::X11Connection connection(reactor);
  const keyboard::HotKeyGrabs hotKeys(connection);
  keyboard::X11Keyboard keyboard(connection, nullptr, hotKeys);
  if (!keyboard.displayCharacter(0)) return state.SkipWithError("no keymap; give it a DISPLAY");
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(keyboard.displayCharacter(0));
}

void conflictCheck(benchmark::State& state) {
  desktop::PollReactor reactor;
  x11::X11Connection connection(reactor);
  const keyboard::HotKeyGrabs hotKeys(connection);
  keyboard::X11Keyboard keyboard(connection, nullptr, hotKeys);
  if (!keyboard.displayCharacter(0)) return state.SkipWithError("no keymap; give it a DISPLAY");
  const BusyDesktop busy(keyboard);
  NSMenu menu;
  for (int i = 0; i < kMenuItems; ++i) menu.addItem(std::make_shared<NSMenuItem>("item", "", "q"));
  const Shortcut shortcut(0, controlKey | optionKey);
  for ([[maybe_unused]] auto _ : state) {
    if (shortcut.matchingMenuItem(menu) || shortcut.isTakenBySystem()) state.SkipWithError("a conflict");
  }
}

// The present desktop's: it is asked anew for each key pressed.
void desktopShortcuts(benchmark::State& state) {
  desktop::PollReactor reactor;
  x11::X11Connection connection(reactor);
  const x11::X11Connection toolkit(reactor);
  const keyboard::HotKeyGrabs hotKeys(connection);
  keyboard::X11Keyboard keyboard(connection, toolkit.get(), hotKeys);
  if (!keyboard.symbolicHotKeys()) return state.SkipWithError("no desktop; give it a DISPLAY");
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(keyboard.symbolicHotKeys());
}

BENCHMARK(releaseToAction)->Unit(benchmark::kMicrosecond);
BENCHMARK(translation)->Unit(benchmark::kMicrosecond);
BENCHMARK(conflictCheck)->Unit(benchmark::kMillisecond);
BENCHMARK(desktopShortcuts)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace vistrel::bench
