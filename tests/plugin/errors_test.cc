// How failures reach the host program.
#include "plugin/errors.h"

#include <algorithm>
#include <ostream>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

#include "plugin/host.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

// --- exceptions raised by name

class RaiseExceptionTest : public PluginTest {};

using Raisings = std::vector<Raised>;

TEST_F(RaiseExceptionTest, RaisesTheNamedClassWithTheMessage) {
  RaiseException("UnsupportedOperationException", "No way.", 0);
  const Raisings raised = host->takePending();
  EXPECT_EQ(raised, (Raisings{{"UnsupportedOperationException", "No way.", 0}}));
  EXPECT_EQ(raised.at(0).messageEncoding, 0x600U);
}

TEST_F(RaiseExceptionTest, GoesThroughItsStepsInOrder) {
  RaiseException("OutOfMemoryException", "Full.", 0);
  EXPECT_EQ(host->sequence(),
            (Lines{"REALBuildString", "REALSetStringEncoding", "PluginNewInstance",
                   "REALSetPropValueString", "REALSetPropValueInt", "RuntimeRaiseException",
                   "REALUnlockObject", "REALUnlockString"}));
  EXPECT_EQ(host->takePending().size(), 1U);
}

TEST_F(RaiseExceptionTest, ANullMessageGivesNoMessageString) {
  RaiseException("OutOfMemoryException", nullptr, 0);
  EXPECT_EQ(host->calls("REALBuildString"), 0);
  EXPECT_EQ(host->takePending(), (Raisings{{"OutOfMemoryException", std::nullopt, 0}}));
}

TEST_F(RaiseExceptionTest, AnEmptyMessageGivesNoMessageString) {
  RaiseException("OutOfMemoryException", "", 0);
  EXPECT_EQ(host->calls("REALBuildString"), 0);
  EXPECT_EQ(host->takePending(), (Raisings{{"OutOfMemoryException", std::nullopt, 0}}));
}

// A text of that many letters, without the memory that it would need.
class LongText {
 public:
  explicit LongText(std::size_t letters) : size_(letters / kChunk * kChunk + 2 * kChunk) {
    const int file = memfd_create("letters", 0);
    const std::string chunk(kChunk, 'a');
    EXPECT_EQ(write(file, chunk.data(), kChunk), static_cast<ssize_t>(kChunk));
    void* const whole = mmap(nullptr, size_, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    EXPECT_NE(whole, MAP_FAILED);
    text_ = static_cast<char*>(whole);
    for (std::size_t at = 0; at <= letters; at += kChunk) {
      void* const part =
          mmap(text_ + at, kChunk, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_FIXED, file, 0);
      EXPECT_EQ(part, text_ + at);
    }
    text_[letters] = '\0';
    close(file);
  }
  ~LongText() { munmap(text_, size_); }
  LongText(const LongText&) = delete;
  LongText& operator=(const LongText&) = delete;
  [[nodiscard]] const char* get() const { return text_; }

 private:
  static constexpr std::size_t kChunk = std::size_t{1} << 21;
  std::size_t size_;
  char* text_ = nullptr;
};

TEST_F(RaiseExceptionTest, AMessageLongerThanTheHostCountsGivesNoMessageString) {
  const LongText message(0x7FFFFFFF);
  RaiseException("OutOfMemoryException", message.get(), 0);
  EXPECT_EQ(host->calls("REALBuildString"), 0);
  EXPECT_EQ(host->takePending(), (Raisings{{"OutOfMemoryException", std::nullopt, 0}}));
}

std::int32_t lengthBuilt = 0;

REALstring buildNothing(const char* /*text*/, std::int32_t length) {
  lengthBuilt = length;
  return nullptr;
}

TEST_F(RaiseExceptionTest, TheLongestMessageIsStillHandedToTheHost) {
  static Resolver hostResolver = nullptr;
  hostResolver = gResolver;
  gResolver = [](const char* name) {
    return std::string_view(name) == "REALBuildString" ? reinterpret_cast<void*>(buildNothing)
                                                       : hostResolver(name);
  };
  const LongText message(0x7FFFFFFE);
  RaiseException("OutOfMemoryException", message.get(), 0);
  EXPECT_EQ(lengthBuilt, 0x7FFFFFFE);
  EXPECT_EQ(host->takePending(), (Raisings{{"OutOfMemoryException", std::nullopt, 0}}));
}

TEST_F(RaiseExceptionTest, NeverUsesTheErrorNumber) {
  for (const std::uint32_t number : {0U, 1U, 42U, 0xFFFFFFFFU}) {
    RaiseException("RuntimeException", "Numbered.", number);
    EXPECT_EQ(host->takePending(), (Raisings{{"RuntimeException", "Numbered.", 0}}));
  }
}

TEST_F(RaiseExceptionTest, RuntimeExceptionStandsInForAnUnknownClass) {
  RaiseException("NoSuchException", "Still told.", 0);
  EXPECT_EQ(host->takePending(), (Raisings{{"RuntimeException", "Still told.", 0}}));
}

TEST_F(RaiseExceptionTest, RaisesNothingWhenNeitherClassIsThere) {
  host->removeClass("RuntimeException");
  RaiseException("NoSuchException", "Unheard.", 0);
  EXPECT_EQ(host->takePending(), Raisings{});
  EXPECT_EQ(host->calls("PluginNewInstance"), 2);
  EXPECT_EQ(host->calls("REALUnlockString"), 1);
}

TEST_F(RaiseExceptionTest, RaisesNothingInAHostThatMakesNoObjects) {
  host->hide("PluginNewInstance");
  RaiseException("RuntimeException", "Unheard.", 0);
  EXPECT_EQ(host->takePending(), Raisings{});
  EXPECT_EQ(host->lookups("PluginNewInstance"), 2);
  EXPECT_EQ(host->calls("REALUnlockString"), 1);
}

TEST_F(RaiseExceptionTest, RaisesNothingInAHostThatCannotRaise) {
  host->hide("RuntimeRaiseException");
  RaiseException("RuntimeException", "Unheard.", 0);
  EXPECT_EQ(host->takePending(), Raisings{});
  EXPECT_EQ(host->calls("REALUnlockObject"), 1);
  EXPECT_EQ(host->calls("REALUnlockString"), 1);
}

struct MissingCase {
  const char* entryPoint;
  Raised raised;
  Lines steps;
  const char* lost = "";  // what the host is never given back
};

void PrintTo(const MissingCase& row, std::ostream* out) { *out << row.entryPoint; }

class MissingRoutineTest : public RaiseExceptionTest,
                           public testing::WithParamInterface<MissingCase> {};

TEST_P(MissingRoutineTest, TheOtherStepsStillRun) {
  host->hide(GetParam().entryPoint);
  RaiseException("OutOfMemoryException", "Full.", 0);
  EXPECT_EQ(host->sequence(), GetParam().steps);
  EXPECT_EQ(host->takePending(), Raisings{GetParam().raised});
  EXPECT_EQ(host->unbalanced(), GetParam().lost);
  abandonHost();
}

INSTANTIATE_TEST_SUITE_P(
    Steps, MissingRoutineTest,
    testing::Values(MissingCase{"REALBuildString",
                                {"OutOfMemoryException", std::nullopt, 0},
                                {"PluginNewInstance", "REALSetPropValueString",
                                 "REALSetPropValueInt", "RuntimeRaiseException",
                                 "REALUnlockObject"}},
                    MissingCase{"REALSetStringEncoding",
                                {"OutOfMemoryException", "Full.", 0},
                                {"REALBuildString", "PluginNewInstance", "REALSetPropValueString",
                                 "REALSetPropValueInt", "RuntimeRaiseException", "REALUnlockObject",
                                 "REALUnlockString"}},
                    MissingCase{"REALSetPropValueString",
                                {"OutOfMemoryException", std::nullopt, 0},
                                {"REALBuildString", "REALSetStringEncoding", "PluginNewInstance",
                                 "REALSetPropValueInt", "RuntimeRaiseException", "REALUnlockObject",
                                 "REALUnlockString"}},
                    MissingCase{"REALSetPropValueInt",
                                {"OutOfMemoryException", "Full.", 0},
                                {"REALBuildString", "REALSetStringEncoding", "PluginNewInstance",
                                 "REALSetPropValueString", "RuntimeRaiseException",
                                 "REALUnlockObject", "REALUnlockString"}},
                    MissingCase{"REALUnlockObject",
                                {"OutOfMemoryException", "Full.", 0},
                                {"REALBuildString", "REALSetStringEncoding", "PluginNewInstance",
                                 "REALSetPropValueString", "REALSetPropValueInt",
                                 "RuntimeRaiseException", "REALUnlockString"},
                                "string \"Full.\" (#1): 1 reference\n"
                                "object of OutOfMemoryException (#2): 1 reference\n"},
                    MissingCase{"REALUnlockString",
                                {"OutOfMemoryException", "Full.", 0},
                                {"REALBuildString", "REALSetStringEncoding", "PluginNewInstance",
                                 "REALSetPropValueString", "REALSetPropValueInt",
                                 "RuntimeRaiseException", "REALUnlockObject"},
                                "string \"Full.\" (#1): 1 reference\n"}),
    [](const auto& row) { return row.param.entryPoint; });

TEST_F(RaiseExceptionTest, AMessageThatCannotBeBuiltIsLeftOut) {
  host->answerNull("REALBuildString");
  RaiseException("OutOfMemoryException", "Full.", 0);
  EXPECT_EQ(host->takePending(), (Raisings{{"OutOfMemoryException", std::nullopt, 0}}));
  EXPECT_EQ(host->calls("REALSetStringEncoding"), 0);
  EXPECT_EQ(host->calls("REALUnlockString"), 0);
}

// --- native exceptions

class GuardTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    provideFamily();
  }
  static void throwNative(const char* name, const char* reason,
                          const char* className = "NSException") {
    objc_exception_throw(
        foundation_double::Foundation::shared().exception(name, reason, className));
  }
};

TEST_F(GuardTest, GivesTheResultOfABodyThatCompletes) {
  EXPECT_EQ(guarded<int>([] { return 7; }), 7);
  EXPECT_EQ(guarded<double>([] { return 0.5; }), 0.5);
  int done = 0;
  guarded([&] { ++done; });
  EXPECT_EQ(done, 1);
  EXPECT_EQ(foundation.log(), Lines{});
}

TEST_F(GuardTest, GivesZeroAfterANativeException) {
  EXPECT_EQ(guarded<int>([]() -> int {
              throwNative("Bad", "Because.");
              return 7;
            }),
            0);
  EXPECT_EQ(guarded<double>([]() -> double {
              throwNative("Bad", "Because.");
              return 7;
            }),
            0.0);
  EXPECT_EQ(guarded<REALobject>([]() -> REALobject {
              throwNative("Bad", "Because.");
              return reinterpret_cast<REALobject>(1);
            }),
            nullptr);
  EXPECT_EQ(host->takePending().size(), 3U);
}

TEST_F(GuardTest, UndoesNothingThatTheBodyHadDone) {
  int done = 0;
  guarded([&] {
    ++done;
    throwNative("Bad", "Because.");
    ++done;
  });
  EXPECT_EQ(done, 1);
  EXPECT_EQ(host->takePending().size(), 1U);
}

TEST_F(GuardTest, LogsAndRaisesAnNSException) {
  guarded([] { throwNative("Bad", "Because."); });
  EXPECT_EQ(foundation.log(), Lines{"A Bad: Because., Info: (null)\n"});
  EXPECT_EQ(host->takePending(), (Raisings{{"NSExceptionZEL", "Because.", 0}}));
}

TEST_F(GuardTest, LogsNameThenReasonThenUserInfo) {
  guarded([&] {
    const id info =
        reinterpret_cast<id>(const_cast<CFStringObject*>(foundation.string("more of it")));
    objc_exception_throw(foundation.exception("Name", "Reason", "NSException", info));
  });
  EXPECT_EQ(foundation.log(), Lines{"A Name: Reason, Info: more of it\n"});
  EXPECT_EQ(host->takePending().size(), 1U);
}

TEST_F(GuardTest, RaisesWithoutALineWhenThatHasNoMemory) {
  foundation.failCall("CFStringCreateWithCString");
  foundation.clearRecords();
  guarded([] { throwNative("Bad", "Because."); });
  EXPECT_EQ(foundation.log(), Lines{});
  EXPECT_EQ(std::count(foundation.calls().begin(), foundation.calls().end(), "NSLog"), 0);
  EXPECT_EQ(host->takePending(), (Raisings{{"NSExceptionZEL", "Because.", 0}}));
}

TEST_F(GuardTest, LogsBeforeItAsksForTheHostException) {
  foundation.clearRecords();
  guarded([] { throwNative("Bad", "Because."); });
  const Lines& messages = foundation.messages();
  const auto at = [&](const char* message) {
    return std::find(messages.begin(), messages.end(), message) - messages.begin();
  };
  EXPECT_LT(at("-[NSException name]"), at("-[NSException reason]"));
  EXPECT_LT(at("-[NSException reason]"), at("-[NSException userInfo]"));
  EXPECT_LT(at("-[NSException userInfo]"), at("+[NSException NewNSExceptionZEL:]"));
  EXPECT_LT(at("+[NSException NewNSExceptionZEL:]"), static_cast<long>(messages.size()));
  EXPECT_EQ(host->takePending().size(), 1U);
}

TEST_F(GuardTest, TakesASubclassForAnNSException) {
  foundation.addClass("SpecialException", "NSException");
  guarded([] { throwNative("Special", "Even so.", "SpecialException"); });
  EXPECT_EQ(foundation.log(), Lines{"A Special: Even so., Info: (null)\n"});
  EXPECT_EQ(host->takePending(), (Raisings{{"NSExceptionZEL", "Even so.", 0}}));
}

TEST_F(GuardTest, ThrowsOnWhatIsNoNSException) {
  const id thrown = foundation.object("NSObject");
  const id arrived = catching([&] { guarded([&] { objc_exception_throw(thrown); }); });
  EXPECT_EQ(arrived, thrown);
  EXPECT_EQ(foundation.log(), Lines{});
  EXPECT_EQ(host->takePending(), Raisings{});
}

TEST_F(GuardTest, ThrowsOnWhatDoesNotEvenAnswerWhatItIs) {
  foundation.addClass("Silent", "NSObject");
  foundation.hideSelector("Silent", "isKindOfClass:");
  const id thrown = foundation.object("Silent");
  foundation.clearRecords();
  const id arrived = catching([&] { guarded([&] { objc_exception_throw(thrown); }); });
  EXPECT_EQ(arrived, thrown);
  EXPECT_EQ(foundation.messages(), Lines{});
  EXPECT_EQ(foundation.log(), Lines{});
}

TEST_F(GuardTest, TakesAnExceptionForWhatItIsWhateverItSays) {
  foundation.addClass("Shy", "NSException");
  foundation.addMethod("Shy", "isKindOfClass:", [](id, SEL, Class*) -> BOOL { return 0; });
  guarded([] { throwNative("Shy", "Even so.", "Shy"); });
  EXPECT_EQ(host->takePending(), (Raisings{{"NSExceptionZEL", "Even so.", 0}}));
}

TEST_F(GuardTest, SwallowsAnExceptionThatTheFamilyMakesNothingOf) {
  family->giveNoExceptions();
  EXPECT_EQ(guarded<int>([]() -> int {
              throwNative("Bad", "Because.");
              return 7;
            }),
            0);
  EXPECT_EQ(foundation.log(), Lines{"A Bad: Because., Info: (null)\n"});
  EXPECT_EQ(host->takePending(), Raisings{});
  EXPECT_EQ(host->calls("RuntimeRaiseException"), 0);
}

TEST_F(GuardTest, GivesUpItsReferenceInAHostThatCannotRaise) {
  host->hide("RuntimeRaiseException");
  guarded([] { throwNative("Bad", "Because."); });
  EXPECT_EQ(host->takePending(), Raisings{});
  EXPECT_EQ(host->calls("REALUnlockObject"), 1);
}

class LoneGuardTest : public PluginTest {};

TEST_F(LoneGuardTest, DoesNotAskWhetherTheFamilyIsThere) {
  const id left = catching([] {
    guarded([] {
      objc_exception_throw(foundation_double::Foundation::shared().exception("Bad", "Alone."));
    });
  });
  ASSERT_NE(left, nullptr);
  EXPECT_EQ(foundation.utf8(send<CFStringRef, "name">(left)), "NSInvalidArgumentException");
  EXPECT_EQ(std::count(foundation.messages().begin(), foundation.messages().end(),
                       "+[NSException respondsToSelector:]"),
            0);
  EXPECT_EQ(foundation.log(), Lines{"A Bad: Alone., Info: (null)\n"});
  EXPECT_EQ(host->takePending(), Raisings{});
}

TEST_F(GuardTest, ReportsNothingForNoException) {
  foundation.clearRecords();
  EXPECT_EQ(guarded<int>([] { return 7; }), 7);
  guarded([] {});
  EXPECT_EQ(foundation.messages(), Lines{});
  EXPECT_EQ(foundation.log(), Lines{});
  EXPECT_EQ(host->takePending(), Raisings{});
}

// --- the family's hooks

class CocoaInitTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    family = std::make_unique<host::Family>(*host, addToDouble());
  }
};

TEST_F(CocoaInitTest, DoesNothingWithoutTheFamily) {
  CocoaInit();
  EXPECT_EQ(instances, nullptr);
  EXPECT_FALSE(ExceptionsInitialized);
  EXPECT_EQ(foundation.messages(),
            (Lines{"+[NSException respondsToSelector:]", "+[NSException respondsToSelector:]"}));
}

TEST_F(CocoaInitTest, AsksTheFamilyOnce) {
  family->provideInstances(foundation.pointerTable());
  family->providePreparation();
  CocoaInit();
  EXPECT_EQ(instances, foundation.pointerTable());
  EXPECT_TRUE(ExceptionsInitialized);
  foundation.clearRecords();
  CocoaInit();
  CocoaInit();
  EXPECT_EQ(foundation.messages(), Lines{});
  EXPECT_EQ(family->preparations(), 1);
}

TEST_F(CocoaInitTest, TriesEachHalfUntilItSucceeds) {
  CocoaInit();
  family->providePreparation();
  CocoaInit();
  EXPECT_EQ(instances, nullptr);
  EXPECT_EQ(family->preparations(), 1);
  family->provideInstances(foundation.pointerTable());
  CocoaInit();
  EXPECT_EQ(instances, foundation.pointerTable());
  EXPECT_EQ(family->preparations(), 1);
}

TEST_F(CocoaInitTest, AsksAgainForAnInstancesMapThatIsNotThereYet) {
  family->provideInstances(nullptr);
  CocoaInit();
  EXPECT_EQ(instances, nullptr);
  family->provideInstances(foundation.pointerTable());
  CocoaInit();
  EXPECT_EQ(instances, foundation.pointerTable());
}

TEST_F(CocoaInitTest, TriesThePreparationAgainAfterItRaised) {
  foundation.addClassMethod("NSException", "PrepareNSExceptionZEL", [](id, SEL) {
    objc_exception_throw(foundation_double::Foundation::shared().exception("Bad", "Not yet."));
  });
  EXPECT_NE(catching([] { CocoaInit(); }), nullptr);
  EXPECT_FALSE(ExceptionsInitialized);
  family->providePreparation();
  CocoaInit();
  EXPECT_TRUE(ExceptionsInitialized);
  EXPECT_EQ(family->preparations(), 1);
}

}  // namespace
}  // namespace zel
