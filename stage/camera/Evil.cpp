#include "stage/camera/Evil.h"

#include <array>
#include <limits>
#include <utility>

#include <spa/param/format.h>
#include <spa/pod/iter.h>

namespace vistrel::stage {
namespace {

constexpr std::array<std::pair<std::string_view, Evil>, 14> kNames = {
    {{"huge-stride", Evil::HugeStride},
     {"negative-stride", Evil::NegativeStride},
     {"odd-stride", Evil::OddStride},
     {"long-size", Evil::LongSize},
     {"short-size", Evil::ShortSize},
     {"no-size", Evil::NoSize},
     {"far-offset", Evil::FarOffset},
     {"corrupted", Evil::Corrupted},
     {"formats", Evil::Formats},
     {"huge-formats", Evil::HugeFormats},
     {"renegotiates", Evil::Renegotiates},
     {"short-choice", Evil::ShortChoice},
     {"empty-values", Evil::EmptyValues},
     {"huge-values", Evil::HugeValues}}};

}  // namespace

std::optional<Evil> evilFromName(std::string_view name) {
  for (const auto& [known, kind] : kNames) {
    if (known == name) return kind;
  }
  return std::nullopt;
}

void spoilOffer(Evil kind, spa_pod& offer) {
  const spa_pod_prop* const rates = spa_pod_find_prop(&offer, nullptr, SPA_FORMAT_VIDEO_framerate);
  if (rates == nullptr || rates->value.type != SPA_TYPE_Choice) return;
  auto* const choice = reinterpret_cast<spa_pod_choice*>(const_cast<spa_pod*>(&rates->value));
  if (kind == Evil::ShortChoice) choice->pod.size = sizeof(spa_pod_choice_body) / 2;
  if (kind == Evil::EmptyValues) choice->body.child.size = 0;
  if (kind == Evil::HugeValues) choice->body.child.size = std::numeric_limits<std::int32_t>::max();
}

void spoil(Evil kind, spa_buffer& buffer) {
  spa_chunk& chunk = *buffer.datas[0].chunk;
  switch (kind) {
    case Evil::HugeStride:
      chunk.stride = std::numeric_limits<std::int32_t>::max();
      break;
    case Evil::NegativeStride:
      chunk.stride = std::numeric_limits<std::int32_t>::min();
      break;
    case Evil::OddStride:
      chunk.stride += 1;
      break;
    case Evil::LongSize:
      chunk.size = std::numeric_limits<std::uint32_t>::max();
      break;
    case Evil::ShortSize:
      chunk.size = 1;
      break;
    case Evil::NoSize:
      chunk.size = 0;
      break;
    case Evil::FarOffset:
      chunk.offset = std::numeric_limits<std::uint32_t>::max() - 1;
      break;
    case Evil::Corrupted:
      chunk.flags = SPA_CHUNK_FLAG_CORRUPTED;
      break;
    default:
      break;  // lies of another kind
  }
}

}  // namespace vistrel::stage
