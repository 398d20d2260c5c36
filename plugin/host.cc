#include "plugin/host.h"

namespace zel {

constinit Resolver gResolver = nullptr;
constinit double rbversion = 0.0;

}  // namespace zel
