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

id fromDictionary(REALobject object, Nesting nesting) {
  return reinterpret_cast<id>(const_cast<CFDictionaryObject*>(
      NewNSDictionary(reinterpret_cast<REALdictionary>(object), nesting)));
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
  id (*convert)(REALobject, Nesting);
};

// For what has nothing in it.
template <id (*Convert)(REALobject)>
id flat(REALobject object, Nesting /*nesting*/) {
  return Convert(object);
}

constexpr Kind kKinds[] = {
    {isOfClass, "MemoryBlock", flat<fromMemoryBlock>},
    {hasMethod, "TrueItem(Index as integer) as Folderitem", flat<fromFolderItem>},
    {isOfClass, "Dictionary", fromDictionary},

    // One class stands here three times, deliberately: the list is kept as it has grown.
    {isOfClass, "QuartzFilterZEL", flat<wrappedObject>},
    {isOfClass, "NSImageZEL", flat<wrappedObject>},
    {isOfClass, "NSImageRepZEL", flat<wrappedObject>},
    {isOfClass, "NSFontZEL", flat<wrappedObject>},
    {isOfClass, "NSResponderZEL", flat<wrappedObject>},
    {isOfClass, "NSAttributedStringZEL", flat<wrappedObject>},
    {isOfClass, "NSIndexSetZEL", flat<wrappedObject>},
    {isOfClass, "NSColorZEL", flat<wrappedObject>},
    {isOfClass, "NSAttributedStringZEL", flat<wrappedObject>},
    {isOfClass, "NSToolbarItemZEL", flat<wrappedObject>},
    {isOfClass, "NSToolbarZEL", flat<wrappedObject>},
    {isOfClass, "NSURLRequestZEL", flat<wrappedObject>},
    {isOfClass, "NSCharacterSetZEL", flat<wrappedObject>},
    {isOfClass, "NSAttributedStringZEL", flat<wrappedObject>},
    {isOfClass, "NSParagraphStyleZEL", flat<wrappedObject>},
    {isOfClass, "NSTextContainerZEL", flat<wrappedObject>},
    {isOfClass, "WebUIDelegateZEL", flat<wrappedObject>},
    {isOfClass, "WebResourceLoadDelegateZEL", flat<wrappedObject>},
    {isOfClass, "WebFrameLoadDelegateZEL", flat<wrappedObject>},
    {isOfClass, "WebDownloadDelegateZEL", flat<wrappedObject>},
    {isOfClass, "DRBurnZEL", flat<wrappedObject>},
    {isOfClass, "PDFAnnotationZEL", flat<wrappedObject>},
    {isOfClass, "PDFActionZEL", flat<wrappedObject>},

    {isOfClass, "NSSizeZEL", flat<fromStructure<"valueWithSize:", HostSize>>},
    {isOfClass, "NSRectZEL", flat<fromStructure<"valueWithRect:", HostRect>>},
    {isOfClass, "NSRangeZEL", flat<fromStructure<"valueWithRange:", HostRange>>},
    {isOfClass, "NSPointZEL", flat<fromStructure<"valueWithPoint:", HostPoint>>},
    {isOfClass, "QTKitTimeZEL", flat<fromTime<"valueWithQTTimeZEL:">>},
    {isOfClass, "QTKitTimeRangeZEL", flat<fromTime<"valueWithQTTimeRangeZEL:">>},
    {isOfClass, "CMTimeMappingZEL", flat<fromTime<"valueWithCMTimeMappingZEL:">>},
    {isOfClass, "CMTimeRangeZEL", flat<fromTime<"valueWithCMTimeRangeZEL:">>},
    {isOfClass, "CMTimeZEL", flat<fromTime<"valueWithCMTimeZEL:">>},

    {isOfClass, "WebPolicyDelegateZEL", flat<wrappedObject>},

    {isOfClass, "CFStringZEL", flat<coreFoundationObject>},
    {isOfClass, "CFNumberZEL", flat<coreFoundationObject>},
    {isOfClass, "CFBinaryDataZEL", flat<coreFoundationObject>},
    {isOfClass, "CFURLZEL", flat<coreFoundationObject>},
    {isOfClass, "CFArrayZEL", flat<coreFoundationObject>},
    {isOfClass, "CFDictionaryZEL", flat<coreFoundationObject>},
    {isOfClass, "CFDateZEL", flat<coreFoundationObject>},
};

}  // namespace

id fromHostObject(REALobject object, Nesting nesting) {
  for (const Kind& kind : kKinds) {
    if (kind.matches(object, kind.text)) return kind.convert(object, nesting);
  }
  // Another plugin may define the class at any time; without it, this is a message to nil.
  return send<id, "wrap:">(lookUpClass("ZELREALobjectWrapper"), object);
}

}  // namespace zel
