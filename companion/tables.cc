#include "companion/tables.h"

#include "companion/exceptions.h"
#include "companion/family.h"
#include "plugin/host.h"
#include "plugin/method_records.h"
#include "plugin/plugin.h"

namespace zel {

const REALmethodDefinition NSExceptionMethods[3] = {
    METHOD("name as string", exceptionName),
    METHOD("reason as string", exceptionReason),
    METHOD("userInfo as dictionary", exceptionUserInfo),
};

REALclassDefinition NSExceptionClass = {
    .base =
        {
            .version = kCurrentControlVersion,
            .name = "NSExceptionZEL",
            .superName = "RuntimeException",
            .dataSize = sizeof(void*),  // one NSException
            .systemUse = 0,
            .constructor = nullptr,
            .destructor = HOST_FUNCTION(NSExceptionDestructor),
            .methods = NSExceptionMethods,
            .methodCount = 3,
            .flags = kFlags,
        },
};

REALclassDefinition& pluginClass() { return NSExceptionClass; }

// Another plugin of the family may have given the host the class already, with methods of its own.
bool startPlugin() {
  addFamilyMethods();
  return REALGetClassRef(NSExceptionClass.base.name) == nullptr;
}

}  // namespace zel
