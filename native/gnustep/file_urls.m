// File URLs. They are read and written as texts here: Foundation's own messages lose names that
// hold a semicolon, or bytes that are not UTF-8.
#include <stdlib.h>
#include <string.h>
#include <strings.h>

#include "native/gnustep/file_records.h"

enum { kRoomForPath = 4096, kEscape = 3, kRoomForUrl = kEscape * kRoomForPath, kUtf8 = 0x08000100 };

// --- the parts of a URL's text

// The path is from `path` to `end`; a query or fragment may be behind it.
struct Parts {
  const char* text;
  const char* path;
  const char* end;
  bool isFile;             // of this machine
  char room[kRoomForUrl];  // for the text, if it fits
};

static bool isThisMachine(const char* authority, size_t length) {
  static const char kLocal[] = "localhost";
  return length == 0 ||
         (length == sizeof kLocal - 1 && strncasecmp(authority, kLocal, length) == 0);
}

// Splits the text of a URL that has a scheme and a path from a root; false for any other.
static bool split(NSURL* url, struct Parts* parts) {
  static const char kFile[] = "file:";
  NSString* const text = [url absoluteString];
  const bool fits = CFStringGetCString(text, parts->room, sizeof parts->room, kUtf8);
  parts->text = fits ? parts->room : [text UTF8String];
  if (parts->text == NULL) return false;
  const char* next = parts->text + strcspn(parts->text, ":/?#");
  if (next[0] != ':' || next == parts->text) return false;
  const char* const authority = ++next;
  parts->isFile = strncasecmp(parts->text, kFile, sizeof kFile - 1) == 0;
  if (strncmp(authority, "//", 2) == 0) {
    next = authority + 2 + strcspn(authority + 2, "/?#");
    parts->isFile = parts->isFile && isThisMachine(authority + 2, (size_t)(next - authority) - 2);
  }
  parts->path = next;
  parts->end = next + strcspn(next, "?#");
  return *next == '/';
}

// Where the last component is within the path, without slashes behind it; false for a root.
static bool lastComponent(const struct Parts* parts, const char** start, const char** end) {
  const char* last = parts->end;
  while (last > parts->path && last[-1] == '/') --last;
  *end = last;
  while (last > parts->path && last[-1] != '/') --last;
  *start = last;
  return *start != *end;
}

// --- escapes

static int hexValue(char digit) {
  static const char kDigits[] = "0123456789abcdef";
  const char* const place = digit == 0 ? NULL : strchr(kDigits, digit | 0x20);
  return place == NULL ? -1 : (int)(place - kDigits);
}

// Reads one byte of a path and steps over it; -1 for what can't be part of a name: a bad escape, or
// one of a zero byte or a slash.
static int takeByte(const char** text) {
  const char* const from = *text;
  *text += from[0] == '%' ? 3 : 1;
  if (from[0] != '%') return (unsigned char)from[0];
  const int high = hexValue(from[1]);
  const int low = high < 0 ? -1 : hexValue(from[2]);
  const int byte = low < 0 ? -1 : high << 4 | low;
  return byte == 0 || byte == '/' ? -1 : byte;
}

// Writes the bytes of a part of a path, and a zero; false when there are none, or too many.
static bool unescape(const char* from, const char* end, char* bytes, size_t size) {
  size_t used = 0;
  while (from < end) {
    const int byte = takeByte(&from);
    if (byte < 0 || used + 1 >= size) return false;
    bytes[used++] = (char)byte;
  }
  bytes[used] = 0;
  return true;
}

static bool isPlain(char byte) {
  const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
  return isLetter || (byte >= '0' && byte <= '9') || strchr("-._~!$&'()*+,=:@", byte) != NULL;
}

// Writes the bytes as a part of a URL's text, and a zero; gives back where that stands. A slash is
// escaped where it is no separator. There is room for three characters for each byte.
static char* escape(char* text, const char* bytes, bool isPath) {
  static const char kDigits[] = "0123456789ABCDEF";
  for (; *bytes != 0; ++bytes) {
    const unsigned char byte = (unsigned char)*bytes;
    if (isPlain(*bytes) || (isPath && *bytes == '/')) {
      *text++ = *bytes;
    } else {
      *text++ = '%';
      *text++ = kDigits[byte >> 4];
      *text++ = kDigits[byte & 0xF];
    }
  }
  *text = 0;
  return text;
}

// --- file references

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref) {
  (void)allocator;
  static const char kScheme[] = "file://";
  uint8_t path[kRoomForPath];
  char text[sizeof kScheme + kRoomForUrl + 1] = "file://";
  Boolean isFolder = false;
  if (zelPathOfRef(ref, path, sizeof path, &isFolder) != kNoError) return nil;
  char* const end = escape(text + sizeof kScheme - 1, (const char*)path, true);
  if (isFolder && path[1] != 0) memcpy(end, "/", sizeof "/");
  NSString* const string = [[NSString alloc] initWithUTF8String:text];
  NSURL* const url = [[NSURL alloc] initWithString:string];
  [string release];
  return url;
}

Boolean CFURLGetFSRef(CFURLRef url, FSRef* ref) {
  struct Parts parts;
  char path[kRoomForPath];
  return split(url, &parts) && parts.isFile && unescape(parts.path, parts.end, path, sizeof path) &&
         FSPathMakeRef((const uint8_t*)path, ref, NULL) == kNoError;
}

// --- components

// The URL with another path; what is behind the path stays. Owned by the caller.
static NSURL* withPath(const struct Parts* parts, NSString* path) {
  const NSUInteger front = (NSUInteger)(parts->path - parts->text);
  NSString* const text =
      [NSString stringWithFormat:@"%.*s%@%s", (int)front, parts->text, path, parts->end];
  return [[NSURL alloc] initWithString:text];
}

// A part of a URL's text, which is ASCII.
static NSMutableString* textBetween(const char* from, const char* end) {
  return [[[NSMutableString alloc] initWithBytes:from
                                          length:(NSUInteger)(end - from)
                                        encoding:NSASCIIStringEncoding] autorelease];
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef component, Boolean isFolder) {
  (void)allocator;
  struct Parts parts;
  char name[kRoomForPath];
  if (!split(url, &parts) || !CFStringGetCString(component, name, sizeof name, kUtf8)) return nil;
  if ([component lengthOfBytesUsingEncoding:NSUTF8StringEncoding] != strlen(name)) return nil;
  char escaped[kRoomForUrl + 1];
  escape(escaped, name, false);
  NSMutableString* const path = textBetween(parts.path, parts.end);
  if (![path hasSuffix:@"/"]) [path appendString:@"/"];
  [path appendString:[NSString stringWithUTF8String:escaped]];
  if (isFolder) [path appendString:@"/"];
  return withPath(&parts, path);
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url) {
  (void)allocator;
  struct Parts parts;
  const char* start = NULL;
  const char* end = NULL;
  if (!split(url, &parts) || !lastComponent(&parts, &start, &end)) return nil;
  return withPath(&parts, textBetween(parts.path, start));
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
  struct Parts parts;
  const char* start = NULL;
  const char* end = NULL;
  char name[kRoomForPath];
  if (!split(url, &parts) || !lastComponent(&parts, &start, &end) ||
      !unescape(start, end, name, sizeof name)) {
    return nil;
  }
  return CFStringCreateWithCString(NULL, name, kUtf8);
}
