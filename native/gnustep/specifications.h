// Old-style file specifications of items.
//
// They have room for 63 bytes of Mac Roman. A name that this can't express is written as the start
// of it and the item's node identifier, "name#1F": such a specification, like the folder's
// identifier in every one, means something in this process only.
#pragma once

#include "native/gnustep/catalog.h"
#include "native/gnustep/file_records.h"

// The identifier of an item within its volume; 2 for the root folder. After zelLocate, like
// everything here that takes an item.
uint32_t zelNodeOf(const struct Item* item);

// The identifier of the item's folder; 1 for the root folder of a volume.
uint32_t zelFolderNodeOf(const struct Item* item);

void zelSpecify(struct Item* item, FSSpec* spec);

// The existing item that a specification names, or null with the reason in errno.
struct Item* zelSpecifiedItem(const FSSpec* spec);

// The units of a text in UTF-8. Returns their number, or -1 when it isn't valid or they don't fit.
int zelNameUnits(const char* name, uint16_t* units, int room);
