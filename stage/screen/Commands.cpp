#include "stage/screen/Commands.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include <X11/Xatom.h>

#include "stage/screen/PictureWatch.h"
#include "stage/screen/Screen.h"
#include "stage/screen/Windows.h"

namespace vistrel::stage {
namespace {

using Json = nlohmann::json;

int number(const Words& words, std::size_t index) { return std::stoi(words.at(index)); }

Json toJson(Rectangle r) { return Json::array({r.x, r.y, r.width, r.height}); }

Json toJson(const WindowFacts& window) {
  return {{"id", window.id},
          {"parent", window.parent},
          {"place", toJson(window.place)},
          {"name", window.name},
          {"class", window.className},
          {"pid", window.processId},
          {"managed", window.isManaged},
          {"states", window.states},
          {"types", window.types}};
}

Json toJson(const Sighting& sighting) {
  return {{"place", toJson(sighting.place)}, {"mirrored", sighting.isMirrored},
          {"upright", sighting.isUpright},   {"softness", sighting.softness},
          {"frames", sighting.frames},       {"fps", sighting.framesPerSecond()},
          {"skipped", sighting.skipped},     {"unreadable", sighting.unreadable},
          {"age", sighting.age(50)},         {"age95", sighting.age(95)},
          {"ageMax", sighting.age(100)}};
}

Json require(bool isDone, const char* what) {
  if (!isDone) throw std::invalid_argument(what);
  return Json::object();
}

Rectangle rectangleFrom(const Words& words, std::size_t index) {
  return {number(words, index), number(words, index + 1), number(words, index + 2), number(words, index + 3)};
}

}  // namespace

Commands::Commands(const Screen& screen) : screen_(screen), input_(screen) {
  addPointer();
  addKeyboard();
  addSight();
  addWindows();
}

void Commands::addPointer() {
  commands_["move"] = [this](const Words& a) {
    return input_.move(number(a, 0), number(a, 1)), Json::object();
  };
  commands_["press"] = [this](const Words& a) {
    return input_.button(number(a, 0), Motion::Down), Json::object();
  };
  commands_["release"] = [this](const Words& a) {
    return input_.button(number(a, 0), Motion::Up), Json::object();
  };
  commands_["click"] = [this](const Words& a) {  // BUTTON X Y
    return input_.click(number(a, 0), number(a, 1), number(a, 2)), Json::object();
  };
  commands_["drag"] = [this](const Words& a) {
    return input_.drag(number(a, 0), number(a, 1), number(a, 2), number(a, 3)), Json::object();
  };
}

void Commands::addKeyboard() {
  const auto send = [this](const Words& names, std::initializer_list<Motion> motions) {
    const auto code = input_.keyCode(names.at(0));
    if (!code) throw std::invalid_argument("no such key");
    for (const Motion motion : motions) input_.key(*code, motion);
    return Json::object();
  };
  commands_["keydown"] = [send](const Words& a) { return send(a, {Motion::Down}); };
  commands_["keyup"] = [send](const Words& a) { return send(a, {Motion::Up}); };
  commands_["taken"] = [this](const Words& a) -> Json {  // KEY MODIFIERS
    return {{"taken", input_.isTaken(input_.keyCode(a.at(0)).value(), number(a, 1))}};
  };
  commands_["keyboard"] = [this](const Words&) -> Json { return {{"free", input_.isKeyboardFree()}}; };
  commands_["bells"] = [this](const Words&) -> Json { return {{"count", input_.bells()}}; };
  commands_["key"] = [send](const Words& a) { return send(a, {Motion::Down, Motion::Up}); };
}

void Commands::addSight() {
  commands_["shot"] = [this](const Words& a) {  // FILE [X Y WIDTH HEIGHT]
    const Rectangle part = a.size() > 1 ? rectangleFrom(a, 1) : screen_.whole();
    return require(writePng(screen_.capture(part), a.at(0)), "cannot write the picture");
  };
  commands_["pixel"] = [this](const Words& a) -> Json {
    const Image image = screen_.capture({number(a, 0), number(a, 1), 1, 1});
    return {{"color", Json::array({image.red(0, 0), image.green(0, 0), image.blue(0, 0)})}};
  };
  commands_["pixels"] = [this](const Words& a) -> Json {  // X Y WIDTH HEIGHT, 0xRRGGBB row by row
    return {{"pixels", screen_.capture(rectangleFrom(a, 0)).pixels}};
  };
  commands_["pointer"] = [this](const Words&) -> Json {
    const Pointer pointer = screen_.pointer();
    return {{"place", Json::array({pointer.x, pointer.y})}, {"pixels", pointer.pixels}};
  };
  commands_["find"] = [this](const Words&) -> Json {
    const auto place = findPicture(screen_.capture(screen_.whole()));
    return {{"place", place ? toJson(*place) : Json()}};
  };
  commands_["recognize"] = [](const Words& a) -> Json {  // FILE, a picture of the screen
    const Image image = readPng(a.at(0));
    const auto place = findPicture(image);
    const auto reading = place ? readClock(image, *place) : std::nullopt;
    if (!reading) return {{"picture", Json()}};
    return {{"picture",
             {{"place", toJson(*place)}, {"counter", reading->counter}, {"mirrored", reading->isMirrored}}}};
  };
  commands_["watch"] = [this](const Words& a) -> Json {  // FRAMES MILLISECONDS [X Y WIDTH HEIGHT]
    std::optional<Rectangle> place;
    if (a.size() > 2) place = rectangleFrom(a, 2);
    const auto sighting = watchPicture(screen_, place, number(a, 0), std::chrono::milliseconds(number(a, 1)));
    return {{"picture", sighting ? toJson(*sighting) : Json()}};
  };
  commands_["await"] = [this](const Words& a) -> Json {  // MILLISECONDS X Y WIDTH HEIGHT
    const auto first = awaitPicture(screen_, rectangleFrom(a, 1), std::chrono::milliseconds(number(a, 0)));
    return {{"seconds", first ? Json(*first) : Json()}};
  };
}

void Commands::addWindows() {
  commands_["size"] = [this](const Words&) -> Json { return {{"place", toJson(screen_.whole())}}; };
  commands_["windows"] = [this](const Words&) -> Json {
    Json list = Json::array();
    for (const WindowFacts& window : visibleWindows(screen_)) list.push_back(toJson(window));
    return {{"windows", list}};
  };
  commands_["destroy"] = [this](const Words& a) {  // as no program but the window's own should
    XDestroyWindow(screen_.display(), static_cast<Window>(number(a, 0)));
    return XSync(screen_.display(), False), Json::object();
  };
  commands_["focus"] = [this](const Words&) -> Json { return {{"window", toJson(focusedWindow(screen_))}}; };
  commands_["request"] = [this](const Words& a) {  // MESSAGE VALUE [WINDOW], the root window by default
    const Window window = a.size() > 2 ? std::stoul(a[2]) : screen_.root();
    return askManager(screen_, window, a.at(0), number(a, 1)), Json::object();
  };
  commands_["compose"] = [this](const Words&) {  // as a window manager that composes the windows itself
    const Window window = XCreateSimpleWindow(screen_.display(), screen_.root(), 0, 0, 1, 1, 0, 0, 0);
    XSetSelectionOwner(screen_.display(), screen_.atom("_NET_WM_CM_S0"), window, CurrentTime);
    XChangeProperty(screen_.display(), screen_.root(), screen_.atom("_NET_SUPPORTING_WM_CHECK"), XA_WINDOW,
                    32, PropModeReplace, reinterpret_cast<const unsigned char*>(&window), 1);
    return XSync(screen_.display(), False), Json::object();
  };
  commands_["property"] = [this](const Words& a) -> Json {
    return {{"value", rootProperty(screen_, a.at(0))}};
  };
  commands_["selection"] = [this](const Words& a) -> Json {
    return {{"owner", XGetSelectionOwner(screen_.display(), screen_.atom(a.at(0)))}};
  };
}

Json Commands::perform(const Words& words) const {
  if (words.empty()) return {{"error", "no command"}};
  const auto found = commands_.find(words.front());
  if (found == commands_.end()) return {{"error", "commands: " + names()}};
  try {
    return found->second(Words(words.begin() + 1, words.end()));
  } catch (const std::exception& problem) {
    return {{"error", words.front() + ": " + problem.what()}};
  }
}

std::string Commands::names() const {
  std::string result;
  for (const auto& [name, command] : commands_) result += (result.empty() ? "" : " ") + name;
  return result;
}

}  // namespace vistrel::stage
