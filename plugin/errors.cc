#include "plugin/errors.h"

#include "plugin/build_string.h"

namespace zel {

constinit CFMutableDictionaryRef instances = nullptr;
constinit bool ExceptionsInitialized = false;

namespace {

void writeToSystemLog(id exception) {
  const CFStringRef format = autoreleased(
      CFStringCreateWithCString(kDefaultAllocator, "A %@: %@, Info: %@\n", kCFStringEncodingASCII));
  if (format == nullptr) return;
  const id name = send<id, "name">(exception);
  const id reason = send<id, "reason">(exception);
  NSLog(format, name, reason, send<id, "userInfo">(exception));
}

// Thrown when the host has been told what there is to tell. Any object would do that nobody else
// throws: the class of exceptions is one.
id nothingToTell() { return reinterpret_cast<id>(classNamed<"NSException">()); }

}  // namespace

void CocoaInit() {
  Class* const hooks = classNamed<"NSException">();
  if (instances == nullptr && respondsTo<"GetInstancesDictionaryZEL">(hooks)) {
    instances = send<CFMutableDictionaryRef, "GetInstancesDictionaryZEL">(hooks);
  }
  if (!ExceptionsInitialized && respondsTo<"PrepareNSExceptionZEL">(hooks)) {
    send<void, "PrepareNSExceptionZEL">(hooks);
    ExceptionsInitialized = true;
  }
}

void describeException(REALobject exception, REALstring message) {
  REALSetPropValueString(exception, "Message", message);
  REALSetPropValueInt32(exception, "ErrorNumber", 0);
}

void RaiseException(const char* className, const char* message,
                    [[maybe_unused]] std::uint32_t errorNumber) {
  const REALstring text =
      message == nullptr ? nullptr : buildString(message, kCFStringEncodingASCII);
  REALobject exception = REALnewInstance(className);
  if (exception == nullptr) exception = REALnewInstance("RuntimeException");
  if (exception != nullptr) {
    describeException(exception, text);
    REALRaiseException(exception);
    REALUnlockObject(exception);
  }
  if (text != nullptr) REALUnlockString(text);
}

void raiseAndLeave(const char* className, const char* message) {
  RaiseException(className, message, 0);
  objc_exception_throw(nothingToTell());
}

void reportNativeException(id exception) {
  if (exception == nothingToTell()) return;
  if (!isInstanceOf<"NSException">(exception)) objc_exception_throw(exception);
  writeToSystemLog(exception);
  const auto hostException =
      send<REALobject, "NewNSExceptionZEL:">(classNamed<"NSException">(), exception);
  if (hostException == nullptr) return;
  REALRaiseException(hostException);
  REALUnlockObject(hostException);
}

}  // namespace zel
