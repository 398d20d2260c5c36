#include "plugin/main.h"

#include "plugin/downgrade.h"
#include "plugin/plugin.h"

namespace zel {

constinit std::int32_t CurrentREALControlVersion = kCurrentControlVersion;

namespace {

constexpr std::int32_t kOldestControlVersion = 9;
constexpr std::int32_t kDataGranule = 16;  // bytes

// The interface version of each host, newest first.
constexpr struct {
  double hostVersion;
  std::int32_t controlVersion;
} kControlVersions[] = {{2013.03, 12}, {2013.0, 11}, {2012.0, 10}};

// Older hosts, hosts that don't tell their version and what is no number get the oldest.
std::int32_t controlVersionOf(double hostVersion) {
  for (const auto& row : kControlVersions) {
    if (hostVersion >= row.hostVersion) return row.controlVersion;
  }
  return kOldestControlVersion;
}

void readHostVersion() {
  using GetVersion = double (*)();
  const auto getVersion = reinterpret_cast<GetVersion>(gResolver("REALGetRBVersion"));
  if (getVersion != nullptr) rbversion = getVersion();
}

// A negative size is no size and stays as it is.
void roundUpDataSize(std::int32_t& size) {
  const std::int32_t excess = size % kDataGranule;
  if (excess > 0) size += kDataGranule - excess;
}

}  // namespace

void REALPluginMain(Resolver resolver) {
  gResolver = resolver;
  using RegisterVersion = void (*)(std::int32_t);
  const auto registerVersion = reinterpret_cast<RegisterVersion>(resolver("RegisterPluginVersion"));
  readHostVersion();
  CurrentREALControlVersion = controlVersionOf(rbversion);
  registerVersion(CurrentREALControlVersion);  // every host has it, so it isn't tested for

  if (!startPlugin()) return;
  REALclassDefinition& definition = pluginClass();
  roundUpDataSize(definition.base.dataSize);
  if (CurrentREALControlVersion > kOldestControlVersion) {
    definition.base.version = CurrentREALControlVersion;
  } else {
    downgrade(definition, CurrentREALControlVersion);
  }
  REALRegisterClass(&definition);
}

}  // namespace zel
