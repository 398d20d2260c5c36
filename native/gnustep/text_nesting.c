// Refuses property lists of text in which more lists and dictionaries stand within each other than
// a domain may have, before they are parsed.
//
// GNUstep base 1.28 recurses for each of them, when it parses an old-style list and when it gives
// up what it has made of any, so that a file some ten thousand levels deep ends the program that
// looks at its defaults. It can go when Foundation has a bound of its own.
#include "native/gnustep/text_nesting.h"

#include <ctype.h>
#include <string.h>

struct Text {
  const char* at;
  const char* end;
};

static bool begins(const struct Text* text, const char* with) {
  const size_t length = strlen(with);
  return (size_t)(text->end - text->at) >= length && memcmp(text->at, with, length) == 0;
}

// Goes behind the next place where that stands, or to the end.
static void skipBehind(struct Text* text, const char* what) {
  while (text->at < text->end && !begins(text, what)) ++text->at;
  text->at = text->at == text->end ? text->end : text->at + strlen(what);
}

// By how much the level changes with the XML tag at which the text stands, and goes into it.
static int enterTag(struct Text* text) {
  if (begins(text, "<!--")) {
    skipBehind(text, "-->");
    return 0;
  }
  if (begins(text, "<![CDATA[")) {
    skipBehind(text, "]]>");
    return 0;
  }
  ++text->at;
  const bool closes = begins(text, "/");
  if (closes) ++text->at;
  if (!begins(text, "dict") && !begins(text, "array")) return 0;
  const struct Text name = *text;
  skipBehind(text, ">");
  const bool isEmpty = text->at - name.at >= 2 && text->at[-2] == '/';
  return isEmpty ? 0 : closes ? -1 : 1;
}

static int stepInXml(struct Text* text) {
  if (*text->at == '<') return enterTag(text);
  ++text->at;
  return 0;
}

static void skipQuoted(struct Text* text) {
  for (++text->at; text->at < text->end && *text->at != '"'; ++text->at) {
    if (*text->at == '\\' && text->at + 1 < text->end) ++text->at;
  }
  if (text->at < text->end) ++text->at;
}

static bool isInWord(char c) { return isalnum((unsigned char)c) || strchr("/_.$:-", c) != NULL; }

static int stepInOldStyle(struct Text* text) {
  const char c = *text->at;
  if (c == '"') {
    skipQuoted(text);
  } else if (begins(text, "//")) {
    skipBehind(text, "\n");
  } else if (begins(text, "/*")) {
    skipBehind(text, "*/");
  } else if (c != '\0' && isInWord(c)) {
    while (text->at < text->end && *text->at != '\0' && isInWord(*text->at)) ++text->at;
  } else {
    ++text->at;
    if (c == '{' || c == '(') return 1;
    if (c == '}' || c == ')') return -1;
  }
  return 0;
}

bool zelTextNestsDeeper(const void* bytes, size_t length, int bound) {
  struct Text text = {bytes, (const char*)bytes + length};
  // Foundation takes these for formats of their own.
  if (length == 0 || *text.at == 0 || *text.at == 1) return false;
  while (text.at < text.end && isspace((unsigned char)*text.at)) ++text.at;
  int (*const step)(struct Text*) = begins(&text, "<?") ? stepInXml : stepInOldStyle;
  int level = 0;
  while (text.at < text.end && level <= bound) level += step(&text);
  return level > bound;
}
