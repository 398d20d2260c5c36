// Files that are always there as a whole, old or new.
//
// A file is read and then replaced only if it is still the one that was read. In between nothing is
// locked, so a message may be sent there. What a function here has done is on disk when it answers
// with 0; any other answer is the number of an error, and EAGAIN means: it isn't that file any
// more, read it again.
#pragma once

#include <stddef.h>
#include <sys/stat.h>

// A file as it was when it was read. It is kept open, so that no other gets its number.
struct SeenFile {
  int descriptor;  // -1 when there was no file
  struct stat state;
};

// Reads the whole file. The bytes, null when there is no file, are the caller's to free; so is what
// was seen, to be given to zelForget.
int zelReadFile(const char* path, struct SeenFile* seen, void** bytes, size_t* length);
void zelForget(struct SeenFile* seen);

// Makes, replaces or removes the file. Only the user can read and write it.
int zelReplaceFile(const char* path, const struct SeenFile* seen, const void* bytes, size_t length);
int zelRemoveFile(const char* path, const struct SeenFile* seen);

// Gives the file another name, which ends in ".damaged-1" or the next number that is free, and
// leaves its contents alone.
// @param aside PATH_MAX bytes, for the new path.
int zelPutAside(const char* path, const struct SeenFile* seen, char* aside);

// Makes the folder and those above it; 0 also when it is there. Takes no lock.
int zelMakeFolder(const char* path);
