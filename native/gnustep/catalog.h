// What this process knows of the file system: every item that a file reference has been made for,
// and the folders above it. An item is a node of the file system under one of its names. It stays
// known while the process runs, wherever it is renamed or moved to, and nothing that comes into its
// place is taken for it.
//
// A symbolic link is an item of its own: only links on the way to an item are followed.
#pragma once

#include <stdbool.h>
#include <stdint.h>

// Tells a node from every other one, also from a later one with the same number.
struct Identity {
  uint64_t device;
  uint64_t node;
  int64_t bornSeconds;  // the moment of its making; zeros where the file system keeps none
  uint32_t bornNanoseconds;
  uint8_t handle[12];  // tells the uses of a node number apart; zeros where that is not known
};

struct Item {
  struct Identity identity;
  uint32_t number;  // its own in this process, from 1
  int16_t volume;   // the number of the volume that it is the root folder of, below 0; or else 0
  bool isFolder;
  struct Item* folder;     // where it was last seen; null for "/" only
  char* path;              // where it was last seen: absolute, and without links on the way
  struct Item* otherLink;  // another item that is the same node; null for none
};

// The catalog is for one thread at a time: every function below is called between these two, and
// what they give is used there only.
void zelLockCatalog(void);
void zelUnlockCatalog(void);

// The item at an absolute path, or null with the reason in errno.
struct Item* zelItemAtPath(const char* path);

// Brings an item's folder and path up to date. False, with the reason in errno, when it is nowhere
// that this process knows of: it is looked for by name, among its neighbours, and then in all known
// folders, so a renamed item is always found and a moved one when its new folder is known.
bool zelLocate(struct Item* item);

// Whether zelLocate would find the item; its folder and path are left alone where it is still
// there.
bool zelExists(struct Item* item);

// The item of that number, or null.
struct Item* zelItemWithNumber(uint32_t number);

// The root folder of the volume that the item is on. After zelLocate.
struct Item* zelVolumeOf(struct Item* item);

// The root folder of the volume of that number, or null.
struct Item* zelVolumeWithNumber(int16_t volume);

// The item's name, a part of its path; "/" for the root of the file system.
const char* zelItemName(const struct Item* item);

// The path of a name in a folder, for the caller to free; null when memory is short.
char* zelJoinPath(const char* folder, const char* name);
