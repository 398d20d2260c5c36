#include "foundation_double/urls.h"

#include <string_view>

#include "foundation_double/classes.h"
#include "foundation_double/literals.h"
#include "foundation_double/strings.h"
#include "foundation_double/url_paths.h"

namespace foundation_double::objc {
namespace {

constexpr std::u16string_view kHexDigits = u"0123456789ABCDEFabcdef";
/// What may stand in a URL by itself, beside letters and digits.
constexpr std::u16string_view kMarks = u"-_.!~*'();/?:@&=+$,[]#";

bool isHexDigit(char16_t unit) { return kHexDigits.find(unit) != std::u16string_view::npos; }

bool isPlain(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'a' && unit <= u'z') || kMarks.find(unit) != std::u16string_view::npos;
}

bool isValid(std::u16string_view text) {
  if (text.empty()) return false;
  while (!text.empty()) {
    const bool escape = text.front() == u'%';
    if (escape && (text.size() < 3 || !isHexDigit(text[1]) || !isHexDigit(text[2]))) return false;
    if (!escape && !isPlain(text.front())) return false;
    text.remove_prefix(escape ? 3 : 1);
  }
  return true;
}

zel::id absoluteString(zel::id self, zel::SEL /*selector*/) {
  return bodyOf<UrlBody>(self, "URL").absoluteString.get();
}

}  // namespace

std::optional<std::u16string> UrlBody::text() const {
  return stringBody(absoluteString.get()).units;
}

std::optional<std::string> UrlBody::literal() const { return "url(" + quoted(*text()) + ")"; }

ClassDefinition urlClass() {
  return {.name = "NSURL", .methods = {method("absoluteString", &absoluteString)}};
}

zel::CFURLRef createUrl(const std::u16string& text) {
  if (!isValid(text)) return nullptr;
  auto body = std::make_unique<UrlBody>();
  body->absoluteString = kept(createString(text));
  return createObject<zel::CFURLRef>("NSURL", std::move(body));
}

zel::CFURLRef createFileUrl(std::u16string_view path) {
  return createUrl(u"file://" + escapedPath(path));
}

std::optional<std::u16string> filePath(zel::CFURLRef url) {
  const std::u16string text = *bodyOf<UrlBody>(url, "URL").text();
  const auto parts = urlParts(text);
  for (const std::u16string_view head : {u"file://", u"file://localhost", u"file:"}) {
    if (parts && parts->head == head) return unescaped(parts->path);
  }
  return std::nullopt;
}

}  // namespace foundation_double::objc
