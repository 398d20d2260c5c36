// Takes property lists apart, for writing; see there. Equal texts become one node, as macOS writes
// them; so does a list or dictionary that stands in several places.
#include "native/gnustep/property_list_nodes.h"

#include <objc/runtime.h>

#include "native/gnustep/property_lists.h"

enum { kUnitsAtOnce = 64 };

static const uint32_t kNoNode = UINT32_MAX;

struct Walk {
  struct Nodes made;
  NSMapTable* texts;       // by what they say
  NSMapTable* containers;  // by identity
  unsigned deepest;
};

static uint32_t visit(struct Walk* walk, id object, unsigned level);

bool zelSameText(NSString* left, NSString* right) {
  const NSUInteger length = [left length];
  if (length != [right length]) return false;
  unichar leftUnits[kUnitsAtOnce];
  unichar rightUnits[kUnitsAtOnce];
  for (NSUInteger at = 0; at < length; at += kUnitsAtOnce) {
    const NSRange range = NSMakeRange(at, MIN(length - at, (NSUInteger)kUnitsAtOnce));
    [left getCharacters:leftUnits range:range];
    [right getCharacters:rightUnits range:range];
    if (memcmp(leftUnits, rightUnits, range.length * sizeof(unichar)) != 0) return false;
  }
  return true;
}

static NSUInteger hashOfText(NSMapTable* table, const void* text) {
  (void)table;
  return [(id)text hash];
}

static BOOL areSameTexts(NSMapTable* table, const void* left, const void* right) {
  (void)table;
  return zelSameText((id)left, (id)right);
}

static NSMapTable* tableOfTexts(void) {
  NSMapTableKeyCallBacks keys = NSNonOwnedPointerMapKeyCallBacks;
  keys.hash = hashOfText;
  keys.isEqual = areSameTexts;
  return [NSCreateMapTable(keys, NSIntegerMapValueCallBacks, 0) autorelease];
}

// The kind of an object's node, or -1. Classes are found by name once: that takes long.
static int kindOf(id object) {
  static struct {
    const char* name;
    enum NodeKind kind;
    Class class;
  } kinds[] = {{"NSString", kTextNode, Nil},
               {"NSNumber", kNumberNode, Nil},
               {"NSDictionary", kDictionaryNode, Nil},
               {"NSArray", kListNode, Nil},
               {"NSDate", kDateNode, Nil},
               {"NSData", kDataNode, Nil}};
  for (size_t i = 0; i < sizeof kinds / sizeof *kinds; ++i) {
    if (kinds[i].class == Nil) kinds[i].class = objc_getClass(kinds[i].name);
    if ([object isKindOfClass:kinds[i].class]) return (int)kinds[i].kind;
  }
  return -1;
}

static struct Node* nodeAt(const struct Walk* walk, uint32_t number) {
  return (struct Node*)[walk->made.nodes mutableBytes] + number;
}

static uint32_t fail(struct Walk* walk, NSString* fault) {
  walk->made.fault = fault;
  return kNoNode;
}

// A new node's number.
static uint32_t addNode(struct Walk* walk, struct Node node) {
  const NSUInteger number = [walk->made.nodes length] / sizeof node;
  if (number >= kNoNode) return fail(walk, @"it has too many parts");
  [walk->made.nodes appendBytes:&node length:sizeof node];
  return (uint32_t)number;
}

// The number under which the object is known in the table, or else that of a new node.
static uint32_t numberIn(struct Walk* walk, NSMapTable* table, struct Node node) {
  const uintptr_t known = (uintptr_t)NSMapGet(table, (const void*)node.object);
  if (known != 0) return (uint32_t)(known - 1);
  const uint32_t number = addNode(walk, node);
  NSMapInsert(table, (const void*)node.object, (const void*)((uintptr_t)number + 1));
  return number;
}

// Puts the numbers of what is in a container where its references are; false with a fault.
static bool visitAll(struct Walk* walk, NSArray* objects, uint32_t container, NSUInteger reference,
                     unsigned level) {
  const NSUInteger count = [objects count];
  for (NSUInteger i = 0; i < count; ++i) {
    const uint32_t part = visit(walk, [objects objectAtIndex:i], level + 1);
    if (part == kNoNode) return false;
    ((uint32_t*)[walk->made.references mutableBytes])[reference + i] = part;
    struct Node* const node = nodeAt(walk, container);
    node->levels = MAX(node->levels, (uint16_t)(nodeAt(walk, part)->levels + 1));
  }
  return true;
}

// Makes room for a container's references; its number, with a fault kNoNode.
static uint32_t openContainer(struct Walk* walk, uint32_t number, NSUInteger count,
                              NSUInteger references) {
  const NSUInteger first = [walk->made.references length] / sizeof(uint32_t);
  if (first + references >= kNoNode) return fail(walk, @"it has too many parts");
  [walk->made.references increaseLengthBy:references * sizeof(uint32_t)];
  struct Node* const node = nodeAt(walk, number);
  node->first = (uint32_t)first;
  node->count = (uint32_t)count;
  node->levels = 1;
  node->isOpen = true;
  return number;
}

static bool visitElements(struct Walk* walk, uint32_t number, unsigned level) {
  NSArray* const list = nodeAt(walk, number)->object;
  if (openContainer(walk, number, [list count], [list count]) == kNoNode) return false;
  return visitAll(walk, list, number, nodeAt(walk, number)->first, level);
}

static bool visitEntries(struct Walk* walk, uint32_t number, unsigned level) {
  NSDictionary* const dictionary = nodeAt(walk, number)->object;
  NSArray* const keys = [dictionary allKeys];
  NSMutableArray* const values = [NSMutableArray arrayWithCapacity:[keys count]];
  for (id key in keys) {
    if (kindOf(key) != kTextNode) {
      fail(walk, [NSString stringWithFormat:@"a key is no text but of class %@", [key class]]);
      return false;
    }
    [values addObject:[dictionary objectForKey:key]];
  }
  if (openContainer(walk, number, [keys count], 2 * [keys count]) == kNoNode) return false;
  const NSUInteger first = nodeAt(walk, number)->first;
  return visitAll(walk, keys, number, first, level) &&
         visitAll(walk, values, number, first + [keys count], level);
}

static uint32_t visitContainer(struct Walk* walk, id object, enum NodeKind kind, unsigned level) {
  const uint32_t number =
      numberIn(walk, walk->containers, (struct Node){.object = object, .kind = kind});
  if (number == kNoNode) return kNoNode;
  if (nodeAt(walk, number)->isOpen) {
    return fail(walk, @"a list or a dictionary stands within itself");
  }
  const unsigned levels = nodeAt(walk, number)->levels;  // 0 when it is met for the first time
  if (level + MAX(levels, 1U) - 1 > walk->deepest) {
    return fail(walk, [NSString stringWithFormat:@"more than %u lists and dictionaries stand "
                                                 @"within each other",
                                                 walk->deepest]);
  }
  if (levels > 0) return number;
  if (!(kind == kListNode ? visitElements : visitEntries)(walk, number, level)) return kNoNode;
  nodeAt(walk, number)->isOpen = false;
  return number;
}

// The number of an object's node; kNoNode with a fault.
static uint32_t visit(struct Walk* walk, id object, unsigned level) {
  const int kind = kindOf(object);
  switch (kind) {
    case kListNode:
    case kDictionaryNode:
      return visitContainer(walk, object, (enum NodeKind)kind, level);
    case kTextNode:
      return numberIn(walk, walk->texts, (struct Node){.object = object, .kind = kTextNode});
    case -1:
      return fail(walk,
                  [NSString stringWithFormat:@"it holds an object of class %@", [object class]]);
    default:
      return addNode(walk, (struct Node){.object = object, .kind = (enum NodeKind)kind});
  }
}

struct Nodes zelTakeApart(id root, unsigned deepest) {
  struct Walk walk = {.made = {.nodes = [NSMutableData data], .references = [NSMutableData data]},
                      .texts = tableOfTexts(),
                      .containers = [NSCreateMapTable(NSNonOwnedPointerMapKeyCallBacks,
                                                      NSIntegerMapValueCallBacks, 0) autorelease],
                      .deepest = deepest};
  visit(&walk, root, 1);
  return walk.made;
}

NSString* zelPropertyListFault(id value, unsigned deepest) {
  switch (kindOf(value)) {
    case kTextNode:
    case kNumberNode:
    case kDateNode:
    case kDataNode:
      return nil;  // most values; there is nothing to take apart
    default:
      return zelTakeApart(value, deepest).fault;
  }
}
