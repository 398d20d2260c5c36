// Locks of the store whose owners live, and of those that are gone.
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>

#include "tests/native/store_fixture.h"

namespace native_test {
namespace {

namespace fs = std::filesystem;

using StoreLockTest = StoreTest;

/// The kernel's lock, as a living process has it.
class KernelLock {
 public:
  explicit KernelLock(const fs::path& locks)
      : file_(open((locks / ".GNUstepDefaults.file").c_str(), O_RDWR | O_CLOEXEC)) {
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    EXPECT_EQ(fcntl(file_, F_SETLK, &whole), 0);
  }
  KernelLock(const KernelLock&) = delete;
  KernelLock& operator=(const KernelLock&) = delete;
  ~KernelLock() { close(file_); }

 private:
  int file_;
};

/// Makes a lock look older, but not so old that anybody would break it: programs of others that
/// have GNUstep base in their memory can then not have made it, unless they run for that long.
void makeOlder(const fs::path& lock) {
  fs::last_write_time(lock, fs::file_time_type::clock::now() - std::chrono::seconds(13));
}

TEST_F(StoreLockTest, ALockThatWasLeftIsTakenOverAtOnce) {
  ASSERT_EQ(ask({"write", "0"}), "yes");
  for (const mode_t mode : {0500U, 0755U}) {  // by a program with this library, by one without it
    ASSERT_EQ(mkdir(lockFolder().c_str(), mode), 0);
    makeOlder(lockFolder());
    StoreProcess writer(ZEL_STORE_PROBE, {domain(), "write", std::to_string(mode)});
    EXPECT_TRUE(writer.hasEnded(kAMoment));
    EXPECT_EQ(writer.output(), "yes\n");
    EXPECT_FALSE(fs::exists(lockFolder()));
  }
}

TEST_F(StoreLockTest, ALockWhoseOwnerMayLiveIsWaitedFor) {
  ASSERT_EQ(ask({"write", "0"}), "yes");
  StoreProcess owner(ZEL_STORE_STRANGER, {"stranger"});
  EXPECT_FALSE(owner.hasEnded(0.5));
  ASSERT_EQ(mkdir(lockFolder().c_str(), 0755), 0);
  StoreProcess writer(ZEL_STORE_PROBE, {domain(), "write", "1"});
  EXPECT_FALSE(writer.hasEnded(1.5));
  EXPECT_EQ(ask({"read"}), "0");
  EXPECT_TRUE(fs::exists(lockFolder()));
  owner.kill();
  EXPECT_TRUE(owner.hasEnded(kAMoment));
  makeOlder(lockFolder());
  EXPECT_TRUE(writer.hasEnded(kAMoment));
  EXPECT_EQ(writer.output(), "yes\n");
}

TEST_F(StoreLockTest, ALivingOwnerOfTheKernelsLockIsWaitedFor) {
  ASSERT_EQ(ask({"write", "0"}), "yes");
  auto lock = std::make_optional<KernelLock>(lockFolder().parent_path());
  ASSERT_EQ(mkdir(lockFolder().c_str(), 0500), 0);
  StoreProcess writer(ZEL_STORE_PROBE, {domain(), "write", "1"});
  EXPECT_FALSE(writer.hasEnded(1));
  EXPECT_EQ(ask({"read"}), "0");
  lock.reset();  // the folder stays, as when a process is killed
  EXPECT_TRUE(writer.hasEnded(kAMoment));
  EXPECT_EQ(writer.output(), "yes\n");
}

TEST_F(StoreLockTest, ALockThatIsNeverGivenBackIsToldOf) {
  ASSERT_EQ(ask({"write", "0"}), "yes");
  const KernelLock lock(lockFolder().parent_path());
  StoreProcess writer(ZEL_STORE_PROBE, {domain(), "write", "1"});
  EXPECT_EQ(writer.result(), 0);
  EXPECT_EQ(writer.output(), "no\n");
  EXPECT_NE(writer.log().find("can't be written: another program keeps them locked."),
            std::string::npos)
      << writer.log();
}

TEST_F(StoreLockTest, FoundationsToolAndOthersTakeTurns) {
  constexpr int kTimes = 20;
  StoreProcess first(ZEL_STORE_PROBE, {domain(), "many", "first", std::to_string(kTimes)});
  StoreProcess second(ZEL_STORE_PROBE, {domain(), "many", "second", std::to_string(kTimes)});
  for (int i = 0; i < kTimes; ++i) {
    outputOf(ZEL_DEFAULTS_TOOL,
             {"defaults", "write", domain(), "tool" + std::to_string(i), "written"});
  }
  EXPECT_EQ(first.result(), 0);
  EXPECT_EQ(second.result(), 0);
  EXPECT_EQ(first.output() + second.output(), "");
  EXPECT_EQ(ask({"count", "first"}), std::to_string(kTimes));
  EXPECT_EQ(ask({"count", "second"}), std::to_string(kTimes));
  EXPECT_EQ(ask({"count", "tool"}), std::to_string(kTimes));
}

TEST_F(StoreLockTest, AProgramEndsAlthoughItCannotWrite) {
  ASSERT_EQ(ask({"write", "0"}), "yes");
  const KernelLock lock(lockFolder().parent_path());
  StoreProcess program(ZEL_STORE_PROBE, {domain(), "return", "1"});
  EXPECT_TRUE(program.hasEnded(kAMoment));
  EXPECT_NE(program.log().find("can't be written"), std::string::npos);
}

}  // namespace
}  // namespace native_test
