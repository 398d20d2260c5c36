// The double's records and faults.

#include <stdexcept>

#include "tests/foundation_double/fixture.h"

namespace {

using FoundationFaultsTest = FoundationTest;
using foundation_double::Foundation;
using zel::CFStringRef;
using zel::id;
using zel::NSInteger;
using zel::send;

CFStringRef newString(const char* text) {
  return zel::CFStringCreateWithCString(nullptr, text, zel::kCFStringEncodingUTF8);
}

/// A function of Core Foundation and whether one call of it does its work.
struct Call {
  const char* function;
  bool (*succeeds)(Foundation& foundation, CFStringRef text);
};
// In this order: what CFRetain adds, CFRelease drops.
const Call kCalls[] = {
    {"CFRetain", [](Foundation&, CFStringRef text) { return zel::CFRetain(text) == text; }},
    {"CFRelease",
     [](Foundation& foundation, CFStringRef text) {
       const long before = foundation.references(text);
       zel::CFRelease(text);
       return foundation.references(text) < before;
     }},
    {"CFStringCreateWithCString",
     [](Foundation&, CFStringRef) { return zel::autoreleased(newString("x")) != nullptr; }},
    {"CFStringCreateWithCharacters",
     [](Foundation&, CFStringRef) {
       const zel::UniChar unit = 'x';
       return zel::autoreleased(zel::CFStringCreateWithCharacters(nullptr, &unit, 1)) != nullptr;
     }},
    {"CFStringGetLength",
     [](Foundation&, CFStringRef text) { return zel::CFStringGetLength(text) == 1; }},
    {"CFStringGetCString",
     [](Foundation&, CFStringRef text) {
       char buffer[4];
       return zel::CFStringGetCString(text, buffer, 4, zel::kCFStringEncodingUTF8) != 0;
     }},
    {"CFURLCreateWithString",
     [](Foundation&, CFStringRef text) {
       return zel::autoreleased(zel::CFURLCreateWithString(nullptr, text, nullptr)) != nullptr;
     }},
    {"CFDictionaryCreateMutable",
     [](Foundation&, CFStringRef) {
       return zel::autoreleased(zel::CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr)) !=
              nullptr;
     }},
    {"CFDictionarySetValue",
     [](Foundation& foundation, CFStringRef text) {
       zel::CFDictionarySetValue(foundation.pointerTable(), text, text);
       return !foundation.pointerTableEntries().empty();
     }},
    {"CFDictionaryGetValue",
     [](Foundation& foundation, CFStringRef text) {
       zel::CFDictionarySetValue(foundation.pointerTable(), text, text);
       return zel::CFDictionaryGetValue(foundation.pointerTable(), text) == text;
     }},
    {"CFDictionaryRemoveValue",
     [](Foundation& foundation, CFStringRef text) {
       zel::CFDictionarySetValue(foundation.pointerTable(), text, text);
       zel::CFDictionaryRemoveValue(foundation.pointerTable(), text);
       return foundation.pointerTableEntries().empty();
     }},
    {"NSLog",
     [](Foundation& foundation, CFStringRef text) {
       NSLog(text);
       return foundation.log() == Lines{"x"};
     }},
    {"zelFoundationConstant",
     [](Foundation&, CFStringRef) {
       return zel::zelFoundationConstant("NSGlobalDomain") != nullptr;
     }},
};

// --- records

TEST_F(FoundationFaultsTest, MessagesAreRecordedInOrder) {
  zel::NSUserDefaults* const defaults = foundation_.standardDefaults();
  send<void, "setInteger:forKey:">(defaults, NSInteger{5}, foundation_.string("k"));
  send<id, "standardUserDefaults">(zel::lookUpClass("NSUserDefaults"));
  (void)zel::catching([=] { send<void, "frob">(defaults); });
  EXPECT_EQ(foundation_.messages(),
            (Lines{"-[NSUserDefaults setInteger:forKey:]", "+[NSUserDefaults standardUserDefaults]",
                   "-[NSUserDefaults frob]"}));
  foundation_.clearRecords();
  EXPECT_EQ(foundation_.messages(), Lines{});
}

TEST_F(FoundationFaultsTest, NilReceivesNoMessage) {
  EXPECT_EQ((send<NSInteger, "length">(id{nullptr})), 0);
  EXPECT_EQ(foundation_.messages(), Lines{});
}

TEST_F(FoundationFaultsTest, CallsAreRecordedInOrder) {
  const CFStringRef string = newString("k");
  zel::CFStringGetLength(string);
  zel::CFRelease(string);
  EXPECT_EQ(foundation_.calls(),
            (Lines{"CFStringCreateWithCString", "CFStringGetLength", "CFRelease"}));
}

TEST_F(FoundationFaultsTest, RecordsAreToldOfAsTheyAreMade) {
  const CFStringRef text = foundation_.string("x");
  Lines told;
  foundation_.onRecord([&](const std::string& line) {
    told.push_back(line + " " + std::to_string(foundation_.references(text)));
  });
  zel::CFRetain(text);
  send<id, "retain">(text);
  foundation_.onRecord(nullptr);
  zel::CFRelease(text);
  zel::CFRelease(text);
  EXPECT_EQ(told, (Lines{"CFRetain 1", "-[NSString retain] 2"}));

  foundation_.onRecord([&](const std::string& line) { told.push_back(line); });
  foundation_.reset();
  EXPECT_EQ(zel::autoreleased(newString("y")) != nullptr, true);
  EXPECT_EQ(told.size(), 2U);
}

TEST_F(FoundationFaultsTest, LogLinesAreFormatted) {
  const CFStringRef format = foundation_.string("A %@: %@, Info: %@\n");
  const id exception = foundation_.exception("Name", "reason", "NSException", object("more"));
  NSLog(format, send<id, "name">(exception), send<id, "reason">(exception), id{nullptr});
  NSLog(format, id{nullptr}, exception, send<id, "userInfo">(exception));
  NSLog(foundation_.string("100%%"));
  EXPECT_EQ(foundation_.log(),
            (Lines{"A Name: reason, Info: (null)\n", "A (null): reason, Info: more\n", "100%"}));
}

TEST_F(FoundationFaultsTest, TheLogDescribesObjectsWithoutText) {
  NSLog(foundation_.string("%@"), foundation_.object("NSObject"));
  ASSERT_EQ(foundation_.log().size(), 1U);
  EXPECT_EQ(foundation_.log()[0].substr(0, 13), "<NSObject: 0x");
}

TEST_F(FoundationFaultsTest, AnUnknownLogConversionIsAFailure) {
  collectFailures();
  EXPECT_THROW(NSLog(foundation_.string("%d"), 1), std::logic_error);
  EXPECT_THROW(NSLog(foundation_.string("%")), std::logic_error);
  EXPECT_EQ(failures_, (Lines{"NSLog with a conversion other than %@ and %%",
                              "NSLog with a conversion other than %@ and %%"}));
}

// --- faults

TEST_F(FoundationFaultsTest, TheNthMessageRaises) {
  const id string = object("abc");
  foundation_.throwAtMessage(2);
  EXPECT_EQ((send<NSInteger, "length">(string)), 3);
  EXPECT_TRUE(foundation_.faultsPending());
  EXPECT_EQ(raised([=] { send<NSInteger, "length">(string); }), "TestException: told to fail");
  EXPECT_FALSE(foundation_.faultsPending());
  EXPECT_EQ((send<NSInteger, "length">(string)), 3);
}

TEST_F(FoundationFaultsTest, AnyObjectCanBeThrownAtAMessage) {
  const id string = object("abc");
  const id thrown = foundation_.object("NSObject");
  foundation_.throwAtMessage(1, thrown);
  EXPECT_EQ(zel::catching([=] { send<NSInteger, "length">(string); }), thrown);
}

TEST_F(FoundationFaultsTest, ReferenceCountingCountsButDoesNotRaise) {
  const id string = object("abc");
  foundation_.throwAtMessage(1);
  zel::release(zel::retained(string));
  EXPECT_TRUE(foundation_.faultsPending());
  EXPECT_EQ(raised([=] { send<NSInteger, "length">(string); }), "TestException: told to fail");
}

TEST_F(FoundationFaultsTest, AnInitialiserThatRaisesGivesUpItsObject) {
  const id blank = send<id, "alloc">(zel::classNamed<"NSObject">());
  foundation_.throwAtMessage(1);
  EXPECT_NE(zel::catching([&] { send<id, "init">(blank); }), nullptr);
  EXPECT_EQ(foundation_.references(blank), 0);
}

TEST_F(FoundationFaultsTest, AFaultCanBeTakenBack) {
  foundation_.throwAtMessage(1);
  foundation_.throwAtCall("CFRelease");
  foundation_.failCall("CFRelease");
  foundation_.throwAtMessage(0);
  foundation_.throwAtCall("CFRelease", 0);
  foundation_.failCall("CFRelease", 0);
  EXPECT_FALSE(foundation_.faultsPending());
  zel::CFRelease(zel::retained(foundation_.string("k")));
}

TEST_F(FoundationFaultsTest, TheNthCallRaises) {
  const CFStringRef string = foundation_.string("abc");
  foundation_.throwAtCall("CFStringGetLength", 2);
  EXPECT_EQ(zel::CFStringGetLength(string), 3);
  EXPECT_EQ(raised([=] { zel::CFStringGetLength(string); }), "TestException: told to fail");
  EXPECT_EQ(zel::CFStringGetLength(string), 3);
}

TEST_F(FoundationFaultsTest, TheNthCallFails) {
  const CFStringRef string = foundation_.string("abc");
  char buffer[8] = {};
  foundation_.failCall("CFStringCreateWithCString");
  foundation_.failCall("CFStringGetCString", 2);
  EXPECT_EQ(newString("text"), nullptr);
  EXPECT_EQ(zel::CFStringGetCString(string, buffer, 8, zel::kCFStringEncodingUTF8), 1);
  EXPECT_EQ(zel::CFStringGetCString(string, buffer, 8, zel::kCFStringEncodingUTF8), 0);
  EXPECT_FALSE(foundation_.faultsPending());
}

TEST_F(FoundationFaultsTest, EveryCallCanRaiseAndFail) {
  const CFStringRef text = foundation_.string("x");
  for (const Call& call : kCalls) {
    foundation_.throwAtCall(call.function);
    EXPECT_EQ(raised([&] { call.succeeds(foundation_, text); }), "TestException: told to fail")
        << call.function;
    foundation_.failCall(call.function);
    EXPECT_FALSE(call.succeeds(foundation_, text)) << call.function;
    EXPECT_FALSE(foundation_.faultsPending()) << call.function;
    EXPECT_TRUE(call.succeeds(foundation_, text)) << call.function;
  }
}

TEST_F(FoundationFaultsTest, ConstantsCanBeHidden) {
  foundation_.hideConstant("NSArgumentDomain");
  EXPECT_EQ(zel::zelFoundationConstant("NSArgumentDomain"), nullptr);
  EXPECT_NE(zel::zelFoundationConstant("NSGlobalDomain"), nullptr);
  foundation_.reset();
  EXPECT_NE(zel::zelFoundationConstant("NSArgumentDomain"), nullptr);
}

}  // namespace
