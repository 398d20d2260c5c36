#include "bridge/objects_to_native.h"

#include "bridge/data.h"
#include "bridge/dictionaries.h"
#include "bridge/files.h"
#include "bridge/struct_data.h"
#include "plugin/host.h"
#include "plugin/instance_data.h"

namespace zel {
namespace {

// --- how an object is recognised

// A class that the host doesn't know matches nothing.
bool isOfClass(REALobject object, const char* className) {
  const REALclassRef wanted = REALGetClassRef(className);
  return wanted != nullptr && REALObjectIsA(object, wanted) != 0;
}

bool hasMethod(REALobject object, const char* declaration) {
  return REALLoadObjectMethod(object, declaration) != nullptr;
}

// --- what it becomes

id fromMemoryBlock(REALobject object) {
  return NewNSData(reinterpret_cast<REALmemoryBlock>(object));
}

id fromFolderItem(REALobject object) {
  return reinterpret_cast<id>(
      const_cast<CFURLObject*>(NewNSURLfile(reinterpret_cast<REALfolderItem>(object))));
}

id fromDictionary(REALobject object) {
  return reinterpret_cast<id>(
      const_cast<CFDictionaryObject*>(NewNSDictionary(reinterpret_cast<REALdictionary>(object))));
}

// The wrapped object as it is, owned by its wrapper.
id wrappedObject(REALobject object) { return instanceData<id>(object); }

template <Name Factory, class Data>
id fromStructure(REALobject object) {
  return send<id, Factory>(classNamed<"NSValue">(), toNative(instanceData<Data>(object)));
}

// The plugin that defines the class has added the message to NSValue.
template <Name Factory>
id fromTime(REALobject object) {
  return send<id, Factory>(classNamed<"NSValue">(), object);
}

id coreFoundationObject(REALobject object) {
  const auto& data = instanceData<CoreFoundationData>(object);
  return data.marker == kCoreFoundationMarker ? data.object : nullptr;
}

// --- the order of tests; the first that matches decides

struct Kind {
  bool (*matches)(REALobject, const char*);
  const char* text;
  id (*convert)(REALobject);
};

constexpr Kind kKinds[] = {
    {isOfClass, "MemoryBlock", fromMemoryBlock},
    {hasMethod, "TrueItem(Index as integer) as Folderitem", fromFolderItem},
    {isOfClass, "Dictionary", fromDictionary},

    // One class stands here three times, deliberately: the list is kept as it has grown.
    {isOfClass, "QuartzFilterZEL", wrappedObject},
    {isOfClass, "NSImageZEL", wrappedObject},
    {isOfClass, "NSImageRepZEL", wrappedObject},
    {isOfClass, "NSFontZEL", wrappedObject},
    {isOfClass, "NSResponderZEL", wrappedObject},
    {isOfClass, "NSAttributedStringZEL", wrappedObject},
    {isOfClass, "NSIndexSetZEL", wrappedObject},
    {isOfClass, "NSColorZEL", wrappedObject},
    {isOfClass, "NSAttributedStringZEL", wrappedObject},
    {isOfClass, "NSToolbarItemZEL", wrappedObject},
    {isOfClass, "NSToolbarZEL", wrappedObject},
    {isOfClass, "NSURLRequestZEL", wrappedObject},
    {isOfClass, "NSCharacterSetZEL", wrappedObject},
    {isOfClass, "NSAttributedStringZEL", wrappedObject},
    {isOfClass, "NSParagraphStyleZEL", wrappedObject},
    {isOfClass, "NSTextContainerZEL", wrappedObject},
    {isOfClass, "WebUIDelegateZEL", wrappedObject},
    {isOfClass, "WebResourceLoadDelegateZEL", wrappedObject},
    {isOfClass, "WebFrameLoadDelegateZEL", wrappedObject},
    {isOfClass, "WebDownloadDelegateZEL", wrappedObject},
    {isOfClass, "DRBurnZEL", wrappedObject},
    {isOfClass, "PDFAnnotationZEL", wrappedObject},
    {isOfClass, "PDFActionZEL", wrappedObject},

    {isOfClass, "NSSizeZEL", fromStructure<"valueWithSize:", HostSize>},
    {isOfClass, "NSRectZEL", fromStructure<"valueWithRect:", HostRect>},
    {isOfClass, "NSRangeZEL", fromStructure<"valueWithRange:", HostRange>},
    {isOfClass, "NSPointZEL", fromStructure<"valueWithPoint:", HostPoint>},
    {isOfClass, "QTKitTimeZEL", fromTime<"valueWithQTTimeZEL:">},
    {isOfClass, "QTKitTimeRangeZEL", fromTime<"valueWithQTTimeRangeZEL:">},
    {isOfClass, "CMTimeMappingZEL", fromTime<"valueWithCMTimeMappingZEL:">},
    {isOfClass, "CMTimeRangeZEL", fromTime<"valueWithCMTimeRangeZEL:">},
    {isOfClass, "CMTimeZEL", fromTime<"valueWithCMTimeZEL:">},

    {isOfClass, "WebPolicyDelegateZEL", wrappedObject},

    {isOfClass, "CFStringZEL", coreFoundationObject},
    {isOfClass, "CFNumberZEL", coreFoundationObject},
    {isOfClass, "CFBinaryDataZEL", coreFoundationObject},
    {isOfClass, "CFURLZEL", coreFoundationObject},
    {isOfClass, "CFArrayZEL", coreFoundationObject},
    {isOfClass, "CFDictionaryZEL", coreFoundationObject},
    {isOfClass, "CFDateZEL", coreFoundationObject},
};

}  // namespace

id fromHostObject(REALobject object) {
  for (const Kind& kind : kKinds) {
    if (kind.matches(object, kind.text)) return kind.convert(object);
  }
  // Another plugin may define the class at any time; without it, this is a message to nil.
  return send<id, "wrap:">(lookUpClass("ZELREALobjectWrapper"), object);
}

}  // namespace zel
