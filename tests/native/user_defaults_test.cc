// The messages that libzelnative gives to NSUserDefaults.
#include "host/store/private_store.h"
#include "native/corefoundation.h"
#include "native/exceptions.h"
#include "tests/native/support.h"

namespace native_test {
namespace {

using zel::BOOL;
using zel::CFStringRef;
using zel::CFURLRef;
using zel::id;
using zel::send;

class UserDefaultsTest : public NativeTest {
 protected:
  static CFURLRef url(const char* text) {
    return zel::autoreleased(
        zel::CFURLCreateWithString(zel::kDefaultAllocator, string(text), nullptr));
  }
  void setUrl(const char* key, const char* address) {
    send<void, "setURL:forKey:">(defaults_, url(address), string(key));
  }
  /// The absolute text of the key's URL.
  std::string urlText(const char* key) {
    return text(send<id, "absoluteString">(send<id, "URLForKey:">(defaults_, string(key))));
  }
  void setString(const char* key, const char* value) {
    send<void, "setObject:forKey:">(defaults_, string(value), string(key));
  }
  id object(const char* key) { return send<id, "objectForKey:">(defaults_, string(key)); }
  void synchronize() { ASSERT_NE((send<BOOL, "synchronize">(defaults_)), 0); }

  id defaults_ = send<id, "standardUserDefaults">(zel::classNamed<"NSUserDefaults">());
};

/// A folder of the user database's, which is what Foundation goes by.
std::string homeFolder() { return text(send<id, "stringByExpandingTildeInPath">(string("~"))); }

TEST_F(UserDefaultsTest, FileUrlThatIsNoUtf8IsNotLost) {
  setUrl("url.bytes", "file:///tmp/caf%E9");
  synchronize();
  EXPECT_EQ(urlText("url.bytes"), "file:///tmp/caf%E9");
  EXPECT_EQ(probe({"url", "url.bytes"}), "file:///tmp/caf%E9");
}

TEST_F(UserDefaultsTest, UrlComesBackAsItWas) {
  for (const char* const address : {"http://example.com/a?b=c#d", "mailto:someone@example.com",
                                    "https://host/%20x", "relative/path"}) {
    setUrl("anyUrl", address);
    EXPECT_EQ(urlText("anyUrl"), address);
    EXPECT_TRUE(zel::isKindOf<"NSData">(object("anyUrl"))) << address;
  }
}

TEST_F(UserDefaultsTest, FileUrlIsKeptAsItsPath) {
  setUrl("fileUrl", "file:///no/such%20folder/file");
  EXPECT_EQ(text(object("fileUrl")), "/no/such folder/file");
  EXPECT_EQ(urlText("fileUrl"), "file:///no/such%20folder/file");
  const id back = send<id, "URLForKey:">(defaults_, string("fileUrl"));
  EXPECT_NE((send<BOOL, "isFileURL">(back)), 0);
}

TEST_F(UserDefaultsTest, PathIsStandardised) {
  setUrl("crooked", "file:///no/such/../file");
  EXPECT_EQ(text(object("crooked")), "/no/file");
  EXPECT_EQ(urlText("crooked"), "file:///no/file");
}

TEST_F(UserDefaultsTest, HomeFolderIsWrittenAsTilde) {
  setUrl("home", ("file://" + homeFolder() + "/no-such-file").c_str());
  EXPECT_EQ(text(object("home")), "~/no-such-file");
  EXPECT_EQ(urlText("home"), "file://" + homeFolder() + "/no-such-file");
}

TEST_F(UserDefaultsTest, TextIsReadAsAPath) {
  setString("path", "/no/such file");
  EXPECT_EQ(urlText("path"), "file:///no/such%20file");
  setString("path", "~/no-such-file");
  EXPECT_EQ(urlText("path"), "file://" + homeFolder() + "/no-such-file");
}

TEST_F(UserDefaultsTest, OtherValuesAreNoUrls) {
  EXPECT_EQ(urlText("absentUrl"), "(null)");
  send<void, "setInteger:forKey:">(defaults_, zel::NSInteger{5}, string("number"));
  EXPECT_EQ(urlText("number"), "(null)");
  const id list = send<id, "arrayWithObject:">(zel::classNamed<"NSArray">(), string("/tmp"));
  send<void, "setObject:forKey:">(defaults_, list, string("list"));
  EXPECT_EQ(urlText("list"), "(null)");
}

TEST_F(UserDefaultsTest, DataThatIsNoArchiveOfAUrlIsNoUrl) {
  zel::Class* const data = zel::classNamed<"NSData">();
  const id archive =
      send<id, "archivedDataWithRootObject:">(zel::classNamed<"NSKeyedArchiver">(), string("text"));
  const id samples[] = {
      send<id, "data">(data),
      send<id, "dataWithBytes:length:">(data, "hello", zel::NSInteger{5}),
      send<id, "dataWithBytes:length:">(data, "bplist00", zel::NSInteger{8}),
      send<id, "dataWithBytes:length:">(data, "<?xml version=\"1.0\"?>", zel::NSInteger{21}),
      archive,
  };
  for (const id sample : samples) {
    send<void, "setObject:forKey:">(defaults_, sample, string("data"));
    id found = defaults_;
    EXPECT_EQ(zel::catching([&] { found = send<id, "URLForKey:">(defaults_, string("data")); }),
              nullptr);
    EXPECT_EQ(found, nullptr);
  }
}

TEST_F(UserDefaultsTest, NilUrlRemovesTheKey) {
  setUrl("doomed", "http://example.com/");
  ASSERT_NE(object("doomed"), nullptr);
  send<void, "setURL:forKey:">(defaults_, CFURLRef{nullptr}, string("doomed"));
  EXPECT_EQ(object("doomed"), nullptr);
  EXPECT_EQ(urlText("doomed"), "(null)");
}

TEST_F(UserDefaultsTest, NilKeyIsNoKey) {
  EXPECT_EQ((send<id, "URLForKey:">(defaults_, CFStringRef{nullptr})), nullptr);
  const id raised = zel::catching([&] {
    send<void, "setURL:forKey:">(defaults_, url("http://example.com/"), CFStringRef{nullptr});
  });
  EXPECT_EQ(text(send<id, "name">(raised)), "NSInvalidArgumentException");
}

TEST_F(UserDefaultsTest, UrlsReachOtherProcesses) {
  setUrl("farUrl", "http://example.com/a?b=c#d");
  setUrl("farFile", "file:///no/such%20file");
  synchronize();
  EXPECT_EQ(probe({"url", "farUrl"}), "http://example.com/a?b=c#d");
  EXPECT_EQ(probe({"url", "farFile"}), "file:///no/such%20file");
  EXPECT_EQ(probe({"string", "farFile"}), "/no/such file");
}

TEST_F(UserDefaultsTest, NothingIsForced) {
  setString("free", "value");
  EXPECT_EQ((send<BOOL, "objectIsForcedForKey:">(defaults_, string("free"))), 0);
  EXPECT_EQ((send<BOOL, "objectIsForcedForKey:">(defaults_, string("absent"))), 0);
  EXPECT_EQ((send<BOOL, "objectIsForcedForKey:">(defaults_, CFStringRef{nullptr})), 0);
  EXPECT_EQ((send<BOOL, "objectIsForcedForKey:inDomain:">(
                defaults_, string("free"), zel::zelFoundationConstant("NSGlobalDomain"))),
            0);
  EXPECT_EQ((send<BOOL, "objectIsForcedForKey:inDomain:">(defaults_, string("free"),
                                                          CFStringRef{nullptr})),
            0);
}

TEST_F(UserDefaultsTest, MessagesAreAnswered) {
  EXPECT_TRUE(zel::respondsTo<"URLForKey:">(defaults_));
  EXPECT_TRUE(zel::respondsTo<"setURL:forKey:">(defaults_));
  EXPECT_TRUE(zel::respondsTo<"objectIsForcedForKey:">(defaults_));
  EXPECT_TRUE(zel::respondsTo<"objectIsForcedForKey:inDomain:">(defaults_));
}

}  // namespace
}  // namespace native_test
