// The domains of defaults that have a file: GNUstep base's private objects, one for each name and
// defaults object.
//
// All of it is to be used with the lock of the defaults object held.
#pragma once

#import <Foundation/Foundation.h>
#include <stdbool.h>

// One of them.
@interface NSObject (GSPersistentDomain)
// Reads the file, and writes what isn't in it yet. Whether other values are held now than before.
- (BOOL)synchronize;
@end

// How often this thread could not read a domain or not write it. Each time is in the log.
extern _Thread_local unsigned zelFailedDomains;

// Whether it holds what its file doesn't.
bool zelIsUnwritten(NSObject* domain);

// What a defaults object holds of them, by name; not owned.
NSMutableDictionary* zelDomainsOf(NSUserDefaults* defaults);

// The log's words for an error number of the files or of their lock.
NSString* zelReasonOf(int error);
