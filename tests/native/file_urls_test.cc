#include <cstring>

#include "tests/native/folder.h"

namespace native_test {
namespace {

namespace fs = std::filesystem;
using zel::CFURLRef;
using zel::FSRef;
using zel::kDefaultAllocator;
using zel::send;

class FileUrlsTest : public FolderTest {
 protected:
  static CFURLRef url(const std::string& text) {
    return zel::autoreleased(
        zel::CFURLCreateWithString(kDefaultAllocator, string(text.c_str()), nullptr));
  }
  static CFURLRef fileUrl(const FSRef& ref) {
    return zel::autoreleased(zel::CFURLCreateFromFSRef(kDefaultAllocator, &ref));
  }
  static std::string absolute(CFURLRef url) { return text(send<zel::id, "absoluteString">(url)); }
  /// The path of the item that a URL names, or "(none)".
  static std::string item(CFURLRef url) {
    FSRef ref{};
    if (zel::CFURLGetFSRef(url, &ref) != 0) return pathOf(ref);
    EXPECT_TRUE(isNothing(ref));
    return "(none)";
  }
  static std::string itemOf(const std::string& text) { return item(url(text)); }
  static std::string appended(const char* base, const char* name, bool isFolder = false) {
    return absolute(zel::autoreleased(zel::CFURLCreateCopyAppendingPathComponent(
        kDefaultAllocator, url(base), string(name), isFolder ? 1 : 0)));
  }
  static std::string parent(const char* base) {
    return absolute(zel::autoreleased(
        zel::CFURLCreateCopyDeletingLastPathComponent(kDefaultAllocator, url(base))));
  }
  static std::string last(const char* base) {
    return text(zel::autoreleased(zel::CFURLCopyLastPathComponent(url(base))));
  }
};

TEST_F(FileUrlsTest, UrlOfAFileAndOfAFolder) {
  EXPECT_EQ(absolute(fileUrl(refOf(file("name")))), "file://" + at("name"));
  EXPECT_EQ(absolute(fileUrl(refOf(folder()))), "file://" + folder() + "/");
  EXPECT_EQ(absolute(fileUrl(refOf("/"))), "file:///");
  EXPECT_NE((send<zel::BOOL, "isFileURL">(fileUrl(refOf(at("name"))))), 0);
}

TEST_F(FileUrlsTest, UrlsBelongToTheCaller) {
  const FSRef ref = refOf(file("name"));
  const CFURLRef made = zel::CFURLCreateFromFSRef(kDefaultAllocator, &ref);
  EXPECT_EQ(referencesOf(made), 1);
  zel::CFRelease(made);
}

struct Escaped {
  const char* name;
  const char* text;
};
constexpr Escaped kNames[] = {
    {"plain-._~", "plain-._~"},
    {"with space", "with%20space"},
    {"100%", "100%25"},
    {"%41", "%2541"},
    {"a#b", "a%23b"},
    {"a?b", "a%3Fb"},
    {"a;b", "a%3Bb"},
    {"a:b@c&d=e+f,g$h!", "a:b@c&d=e+f,g$h!"},
    {"[x]", "%5Bx%5D"},
    {"a\\b|c^d`e\"f<g>", "a%5Cb%7Cc%5Ed%60e%22f%3Cg%3E"},
    {"line\nfeed", "line%0Afeed"},
    {"\xC3\xA9", "%C3%A9"},
    {"e\xCC\x81", "e%CC%81"},
    {"\xF0\x9F\x98\x80", "%F0%9F%98%80"},
    {"caf\xE9", "caf%E9"},
    {"~", "~"},
};

TEST_F(FileUrlsTest, EveryNameSurvivesTheTrip) {
  for (const auto& [name, escaped] : kNames) {
    const CFURLRef made = fileUrl(refOf(file(name)));
    EXPECT_EQ(absolute(made), "file://" + folder() + "/" + escaped);
    EXPECT_EQ(item(made), at(name));
  }
  const std::string longest(255, 'n');
  EXPECT_EQ(item(fileUrl(refOf(file(longest)))), at(longest));
}

TEST_F(FileUrlsTest, FoundationSeesTheSamePath) {
  for (const auto& [name, escaped] : kNames) {
    if (std::string_view(name) == "caf\xE9") continue;  // no text for Foundation
    EXPECT_EQ(text(send<zel::id, "path">(fileUrl(refOf(file(name))))), at(name));
  }
}

TEST_F(FileUrlsTest, FoundationsUrlsNameTheSameItem) {
  for (const auto& [name, escaped] : kNames) {
    if (std::string_view(name) == "caf\xE9") continue;  // no text for Foundation
    const std::string path = file(name);
    EXPECT_EQ(item(reinterpret_cast<CFURLRef>(send<zel::id, "fileURLWithPath:">(
                  zel::classNamed<"NSURL">(), string(path.c_str())))),
              path);
  }
}

TEST_F(FileUrlsTest, OtherTextsOfTheSameUrl) {
  const std::string path = file("name");
  EXPECT_EQ(itemOf("file:" + path), path);
  EXPECT_EQ(itemOf("file://localhost" + path), path);
  EXPECT_EQ(itemOf("FILE://LocalHost" + path), path);
  EXPECT_EQ(itemOf("file://" + path + "/"), path);
  EXPECT_EQ(itemOf("file://" + folder() + "/%6eam%65"), path);
  EXPECT_EQ(itemOf("file://" + folder() + "/x/../name"), "(none)");
  EXPECT_EQ(itemOf("file://" + folder() + "/./name"), path);
  EXPECT_EQ(itemOf("file://" + path + "?query#fragment"), path);
  EXPECT_EQ(itemOf("file:///"), "/");
}

TEST_F(FileUrlsTest, UrlsThatNameNoItem) {
  const std::string path = file("name");
  for (const std::string& text :
       {"file://" + at("missing"), "http://localhost" + path, "http://" + path,
        "file://elsewhere" + path, path, std::string("file:"), std::string("file:name"),
        std::string("mailto:someone@example.com"), "file://" + folder() + "%2Fname",
        "file://" + path + "%00", "files://" + path}) {
    EXPECT_EQ(itemOf(text), "(none)") << text;
  }
  EXPECT_EQ(item(nullptr), "(none)");
}

TEST_F(FileUrlsTest, RelativeUrlsAreResolved) {
  const std::string path = file("name");
  const CFURLRef base = url("file://" + folder() + "/");
  EXPECT_EQ(
      item(zel::autoreleased(zel::CFURLCreateWithString(kDefaultAllocator, string("name"), base))),
      path);
}

TEST_F(FileUrlsTest, AppendsAComponent) {
  EXPECT_EQ(appended("file:///tmp/", "name"), "file:///tmp/name");
  EXPECT_EQ(appended("file:///tmp", "name"), "file:///tmp/name");
  EXPECT_EQ(appended("file:///", "name"), "file:///name");
  EXPECT_EQ(appended("file:///tmp/", "name", true), "file:///tmp/name/");
  EXPECT_EQ(appended("http://host/a?q#f", "b"), "http://host/a/b?q#f");
  EXPECT_EQ(appended("mailto:someone@example.com", "b"), "(null)");
  for (const auto& [name, escaped] : kNames) {
    if (std::string_view(name) == "caf\xE9") continue;  // no text
    EXPECT_EQ(appended("file:///tmp/", name), std::string("file:///tmp/") + escaped);
  }
}

TEST_F(FileUrlsTest, ComponentNeverBecomesTwo) {
  EXPECT_EQ(appended("file:///tmp/", "a/b"), "file:///tmp/a%2Fb");
  EXPECT_EQ(appended("file:///tmp/", "../b"), "file:///tmp/..%2Fb");
}

TEST_F(FileUrlsTest, ComponentThatIsNoNameGivesNull) {
  const zel::UniChar zero[] = {'a', 0, 'b'};
  const zel::UniChar half[] = {'a', 0xD83D};
  for (const auto& [units, count] : {std::pair{zero, 3}, std::pair{half, 2}}) {
    const zel::CFStringRef name =
        zel::autoreleased(zel::CFStringCreateWithCharacters(kDefaultAllocator, units, count));
    EXPECT_EQ(
        zel::CFURLCreateCopyAppendingPathComponent(kDefaultAllocator, url("file:///tmp/"), name, 0),
        nullptr);
  }
}

TEST_F(FileUrlsTest, DeletesTheLastComponent) {
  EXPECT_EQ(parent("file:///tmp/name"), "file:///tmp/");
  EXPECT_EQ(parent("file:///tmp/name/"), "file:///tmp/");
  EXPECT_EQ(parent("file:///tmp/a%2Fb%20c"), "file:///tmp/");
  EXPECT_EQ(parent("file:///tmp"), "file:///");
  EXPECT_EQ(parent("file:///"), "(null)");
  EXPECT_EQ(parent("http://host/a/b"), "http://host/a/");
  EXPECT_EQ(parent("http://host"), "(null)");
  EXPECT_EQ(parent("mailto:someone@example.com"), "(null)");
}

TEST_F(FileUrlsTest, CopiesTheLastComponent) {
  EXPECT_EQ(last("file:///tmp/name"), "name");
  EXPECT_EQ(last("file:///tmp/name/"), "name");
  EXPECT_EQ(last("file:///tmp/a%20b%3Fc;d"), "a b?c;d");
  EXPECT_EQ(last("file:///tmp/%C3%A9%F0%9F%98%80"), "\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(last("http://host/a?q#f"), "a");
  EXPECT_EQ(last("file:///"), "(null)");
  EXPECT_EQ(last("file:///tmp/caf%E9"), "(null)");
  EXPECT_EQ(last("file:///tmp/a%2Fb"), "(null)");
  EXPECT_EQ(last("file:///tmp/a%00b"), "(null)");
  EXPECT_EQ(last("mailto:someone@example.com"), "(null)");
}

TEST_F(FileUrlsTest, MissingNameInAFolderIsThatNameAgain) {
  const CFURLRef base = fileUrl(refOf(folder()));
  for (const auto& [name, escaped] : kNames) {
    if (std::string_view(name) == "caf\xE9") continue;  // no text
    const CFURLRef made = zel::autoreleased(
        zel::CFURLCreateCopyAppendingPathComponent(kDefaultAllocator, base, string(name), 0));
    EXPECT_EQ(item(made), "(none)");
    EXPECT_EQ(text(zel::autoreleased(zel::CFURLCopyLastPathComponent(made))), name);
    EXPECT_EQ(item(zel::autoreleased(
                  zel::CFURLCreateCopyDeletingLastPathComponent(kDefaultAllocator, made))),
              folder());
  }
}

}  // namespace
}  // namespace native_test
