#include "views/AboutView.h"

#include <array>
#include <string_view>
#include <utility>

#include "appkit/NSImage.h"
#include "appkit/NSWorkspace.h"
#include "base/URL.h"
#include "foundation/Bundle.h"
#include "views/Addresses.h"

namespace vistrel {

using swiftui::EdgeInsets;
using swiftui::Font;
using swiftui::FontWeight;
using swiftui::Text;
using swiftui::View;
using swiftui::VStack;

namespace {

constexpr double kBlockPadding = 8;
constexpr EdgeInsets kContentPadding{20, 60, 20, 60};
constexpr swiftui::Frame kCreditsFrame{200, 64, swiftui::Alignment::Top};
constexpr std::string_view kNoBreakSpace = "\u00a0";
constexpr const char* kMaker = "the Vistrel developers";
constexpr const char* kOpenSourceAuthor = "the Qt Project";
constexpr std::string_view kPagePrefix = "page:";

// The communities without whose work there would be no mirror.
constexpr std::array<std::string_view, 7> kThanked = {
    "Linux", "GNU", "freedesktop.org", "PipeWire", "libjpeg-turbo", "Debian", "X.Org Foundation"};

std::string localized(const char* key) { return Bundle::main().localizedString(key); }

// Words of one name never part at the end of a line.
std::string unbroken(std::string_view name) {
  std::string result;
  for (const char c : name) {
    if (c == ' ') {
      result += kNoBreakSpace;
    } else {
      result += c;
    }
  }
  return result;
}

std::string creditsText() {
  std::string text;
  for (std::size_t i = 0; i < kThanked.size(); ++i) {
    if (i > 0) text += ", ";
    if (i + 1 == kThanked.size()) text += "and" + std::string(kNoBreakSpace);
    text += unbroken(kThanked[i]);
  }
  return text + ".";
}

View heading(const char* key) { return Text(localized(key)).font(Font::Caption, FontWeight::Semibold); }

View block(const char* headingKey, View content) {
  return VStack({heading(headingKey), std::move(content)}).padding(EdgeInsets::all(kBlockPadding));
}

View header() {
  return VStack({swiftui::Image(NSImage::imageNamed("AppIconPreview"), "Vistrel")
                     .padding({.top = swiftui::kDefaultPadding}),
                 Text(localized("Vistrel")).font(Font::Headline),
                 Text(AboutView::versionLine()).font(Font::Caption)});
}

View credits() {
  return Text(creditsText())
      .frame(kCreditsFrame)
      .fixedHeight()
      .multilineTextAlignment(swiftui::TextAlignment::Center);
}

View link(const std::string& title, const char* target) {
  return swiftui::LinkButton(title, [target] { openAddress(target); })
      .accessibilityHint(localized("Opens in the browser"));
}

View links() {
  const std::string maker = std::string("© ") + kMaker;
  return swiftui::HStack({link(localized("FAQ"), address::kFaq), Text("|"), link(maker, address::kMaker)});
}

}  // namespace

AboutView::AboutView(std::weak_ptr<NSWindow> myWindow) : myWindow_(std::move(myWindow)) {}

View AboutView::body() {
  return VStack({header(), block("Made by", Text(kMaker)), block("Special Thanks", credits()),
                 block("Built with Open Source code from", Text(kOpenSourceAuthor)), links()})
      .padding(kContentPadding);
}

std::string AboutView::versionLine() {
  const auto info = Bundle::main().infoDictionary();
  const auto version = info.find("CFBundleShortVersionString");
  const auto build = info.find("CFBundleVersion");
  if (version != info.end() && build != info.end()) return version->second + " (" + build->second + ")";
  if (version != info.end()) return version->second;
  return build != info.end() ? build->second : std::string();
}

void openAddress(const std::string& address) {
  const bool isPage = address.starts_with(kPagePrefix);
  const auto url = isPage ? URL::fileUrl(Bundle::main().resourcePath() + "/pages/" +
                                         address.substr(kPagePrefix.size()) + ".html")
                          : URL::create(address);
  if (url) NSWorkspace::shared().openURL(*url);
}

}  // namespace vistrel
