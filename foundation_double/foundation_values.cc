// The part of the double's face that makes and reads values, and its file system.

#include "foundation_double/arrays.h"
#include "foundation_double/data.h"
#include "foundation_double/dates.h"
#include "foundation_double/defaults_database.h"
#include "foundation_double/dictionaries.h"
#include "foundation_double/file_tree.h"
#include "foundation_double/foundation.h"
#include "foundation_double/literals.h"
#include "foundation_double/numbers.h"
#include "foundation_double/strings.h"
#include "foundation_double/urls.h"
#include "foundation_double/values.h"

namespace foundation_double {

using objc::FileKind;
using objc::FileTree;
using objc::fromUtf8;
using objc::Held;
using objc::pooled;

// --- making

zel::id Foundation::makeNumber(const std::string& code, NumberValue value) {
  return pooled(objc::createNumber(code, value));
}

zel::id Foundation::boolean(bool value) { return number("c", value); }

zel::id Foundation::data(std::string_view bytes) {
  auto body = std::make_unique<objc::DataBody>();
  body->bytes = bytes;
  return pooled(objc::createData(std::move(body)));
}

zel::id Foundation::dataOfLength(zel::NSUInteger pretended) {
  auto body = std::make_unique<objc::DataBody>();
  body->bytes.assign(1, '\0');
  body->pretendedLength = pretended;
  return pooled(objc::createData(std::move(body)));
}

zel::id Foundation::dataWithoutBytes(zel::NSUInteger length) {
  auto body = std::make_unique<objc::DataBody>();
  body->pretendedLength = length;
  body->isWithoutBytes = true;
  return pooled(objc::createData(std::move(body)));
}

zel::id Foundation::date(double seconds) { return pooled(objc::createDate(seconds)); }

void Foundation::setTimeZone(std::int32_t secondsEast) { objc::localZoneSeconds() = secondsEast; }

zel::id Foundation::null() { return objc::sharedNull(); }

zel::id Foundation::array(const std::vector<zel::id>& elements) {
  return pooled(objc::createArray(std::vector<Held>(elements.begin(), elements.end())));
}

zel::id Foundation::dictionary(const std::vector<std::pair<zel::id, zel::id>>& entries) {
  auto body = std::make_unique<objc::DictionaryBody>();
  for (const auto& [key, value] : entries) body->set(Held(key), Held(value));
  return pooled(objc::createDictionary(std::move(body)));
}

zel::id Foundation::dictionary(std::initializer_list<std::pair<std::string, zel::id>> entries) {
  std::vector<std::pair<zel::id, zel::id>> objects;
  for (const auto& [key, value] : entries) objects.emplace_back(asObject(string(key)), value);
  return dictionary(objects);
}

zel::id Foundation::value(zel::NSPoint point) { return pooled(objc::createValue(point)); }
zel::id Foundation::value(zel::NSSize size) { return pooled(objc::createValue(size)); }
zel::id Foundation::value(zel::NSRect rect) { return pooled(objc::createValue(rect)); }
zel::id Foundation::value(zel::NSRange range) { return pooled(objc::createValue(range)); }
zel::id Foundation::value(const std::string& objCType) {
  return pooled(objc::createValue(objCType));
}

zel::CFURLRef Foundation::url(const std::string& text) {
  const zel::CFURLRef made = objc::createUrl(fromUtf8(text));
  if (made == nullptr) objc::misuseWithoutAnswer("no valid URL: " + text);
  return pooled(made);
}

zel::CFURLRef Foundation::fileUrl(const std::string& path) {
  return pooled(objc::createFileUrl(fromUtf8(path)));
}

// --- reading

std::optional<zel::NSUInteger> Foundation::capacity(const void* collection) {
  const objc::Instance* const found = objc::Accounts::shared().find(collection);
  const objc::Body* const body = found == nullptr ? nullptr : found->body.get();
  if (const auto* const array = dynamic_cast<const objc::ArrayBody*>(body)) return array->capacity;
  return objc::bodyOf<objc::DictionaryBody>(collection, "list or dictionary").capacity;
}

std::string Foundation::describe(const void* object) { return objc::literalOf(object); }

// --- the store and the file system

void Foundation::force(const std::string& key, const std::string& domain) {
  objc::DefaultsDatabase::shared().forced.emplace(fromUtf8(key), fromUtf8(domain));
}

void Foundation::makeFile(const std::string& path) {
  FileTree::shared().make(fromUtf8(path), FileKind::kFile);
}

void Foundation::makeFolder(const std::string& path) {
  FileTree::shared().make(fromUtf8(path), FileKind::kFolder);
}

void Foundation::makeVolume(const std::string& path) {
  FileTree::shared().make(fromUtf8(path), FileKind::kVolume);
}

void Foundation::removeFile(const std::string& path) { FileTree::shared().remove(fromUtf8(path)); }

bool Foundation::fileExists(const std::string& path) {
  return FileTree::shared().find(fromUtf8(path)) != nullptr;
}

}  // namespace foundation_double
