#include "stage/camera/Options.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace vistrel::stage {
namespace {

constexpr int kJpegWidthStep = 16;
constexpr int kJpegHeightStep = 8;
constexpr int kContinuousWidth = 1600;

std::vector<int> parseRates(const std::string& text) {
  std::vector<int> rates;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('/', at), text.size());
    rates.push_back(std::atoi(text.substr(at, end - at).c_str()));
    at = end + 1;
  }
  return rates;
}

std::optional<Offer> parseOffer(const std::string& text) {
  Offer offer;
  const std::size_t colon = text.find(':');
  const std::size_t at = text.find('@');
  if (colon == std::string::npos || at == std::string::npos) return std::nullopt;
  offer.formatName = text.substr(0, colon);
  offer.raw = pixelFormatFromName(offer.formatName);
  const std::string size = text.substr(colon + 1, at - colon - 1);
  if (std::sscanf(size.c_str(), "%dx%d", &offer.width, &offer.height) != 2) return std::nullopt;
  offer.rates = parseRates(text.substr(at + 1));
  const bool isJpeg = offer.formatName == "mjpeg";
  if (!isJpeg && !offer.raw) return std::nullopt;
  if (isJpeg && (offer.width % kJpegWidthStep != 0 || offer.height % kJpegHeightStep != 0))
    return std::nullopt;
  return offer;
}

/// Takes the options that have a value. False: there is no such option, or its value makes no sense.
bool take(Options& options, std::string_view option, const std::string& value) {
  if (option == "--name") {
    options.name = value;
  } else if (option == "--node") {
    options.nodeName = value;
  } else if (option == "--quality") {
    options.quality = std::atoi(value.c_str());
  } else if (option == "--black") {
    options.blackFrames = std::atoi(value.c_str());
  } else if (option == "--memory") {
    options.memory = memoryKindFromName(value);
    return options.memory.has_value();
  } else if (option == "--evil") {
    options.evil = evilFromName(value);
    return options.evil.has_value();
  } else if (option == "--transform") {
    const auto transform = transformFromName(value);
    options.transform = transform.value_or(Transform::None);
    return transform.has_value();
  } else if (option == "--offer") {
    const auto offer = parseOffer(value);
    if (offer) options.offers.push_back(*offer);
    return offer.has_value();
  } else if (option == "--property") {
    const std::size_t equals = value.find('=');
    if (equals == std::string::npos) return false;
    options.properties.emplace_back(value.substr(0, equals), value.substr(equals + 1));
  } else {
    return false;
  }
  return true;
}

/// JPEG is put together from rows of blocks, and the detail of a rich picture is laid over rows.
bool canBeTurned(const Options& options) {
  const bool isRaw = std::all_of(options.offers.begin(), options.offers.end(),
                                 [](const Offer& offer) { return offer.raw.has_value(); });
  return options.transform == Transform::None || (isRaw && options.picture == Picture::Plain);
}

/// The gray columns at the right edge must leave enough of the clock's last cell.
bool canBeContinuous(const Options& options) {
  const bool isWide = std::all_of(options.offers.begin(), options.offers.end(),
                                  [](const Offer& offer) { return offer.width >= kContinuousWidth; });
  return !options.isContinuous || isWide;
}

bool takeFlag(Options& options, std::string_view option) {
  if (option == "--rich") {
    options.picture = Picture::Rich;
  } else if (option == "--person") {
    options.picture = Picture::Person;
  } else if (option == "--refuse") {
    options.manner = Manner::Refusing;
  } else if (option == "--silent") {
    options.manner = Manner::Silent;
  } else if (option == "--continuous") {
    options.isContinuous = true;
  } else if (option == "--obey") {
    options.isObeying = true;
  } else {
    return false;
  }
  return true;
}

}  // namespace

std::optional<Options> Options::parse(std::span<char*> arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (takeFlag(options, arguments[i])) continue;
    if (i + 1 == arguments.size() || !take(options, arguments[i], arguments[i + 1])) return std::nullopt;
    ++i;
  }
  if (options.offers.empty())
    for (const auto& [width, height] : {std::pair{1280, 720}, {640, 480}, {1920, 1080}})
      options.offers.push_back({PixelFormat::Yuy2, "yuy2", width, height, {30}});
  return canBeTurned(options) && canBeContinuous(options) ? std::optional(options) : std::nullopt;
}

}  // namespace vistrel::stage
