#include "foundation_double/foundation.h"
#include "host/family/double.h"
#include "tests/host/native_side.h"

namespace tests {
namespace {

foundation_double::Foundation& foundation() { return foundation_double::Foundation::shared(); }

}  // namespace

host::AddMethod addToNativeSide() { return host::addToDouble(); }

Pool::Pool() = default;
Pool::~Pool() { foundation().drainPool(); }

Folder::Folder() : path_("/folder of tests") { foundation().makeFolder(path_); }
Folder::~Folder() { foundation().removeFile(path_); }
void Folder::makeFile(const std::string& name) const { foundation().makeFile(path_ + "/" + name); }

}  // namespace tests
