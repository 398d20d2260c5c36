// Binary property lists: what they can hold, and how they are written and read.
//
// Temporary objects are autoreleased: callers have an autorelease pool in place.
#pragma once

#import <Foundation/Foundation.h>
#include <stdbool.h>

// How many lists and dictionaries may stand within each other in one value; a domain is one more
// around its values. Whoever walks a property list recurses, and stacks end. It is the plugin's own
// bound (bridge/nesting.h).
enum { kDeepestValue = 256, kDeepestDomain = kDeepestValue + 1 };

// Why a property list can't hold that value, as a phrase, or nil when it can: it holds something
// that is no text, number, date, data, list or dictionary; a dictionary's key is no text; a list or
// a dictionary stands within itself; or more than so many of them stand within each other.
NSString* zelPropertyListFault(id value, unsigned deepest);

// The data of a binary property list, not owned; nil and the fault for what a property list can't
// hold.
NSData* zelBinaryPropertyList(id root, NSString** fault);

// What is in a binary property list, immutable and not owned; nil when the data is damaged, or
// holds what zelBinaryPropertyList wouldn't write.
id zelReadBinaryPropertyList(NSData* data);

// Whether data begins as a binary property list does.
bool zelIsBinaryPropertyList(NSData* data);

// Whether two texts are the same, character by character: for Foundation, an "e" with an accent
// equals the accented letter.
bool zelSameText(NSString* left, NSString* right);
