// Every system call of a synchronize fails once, and the process ends once before each: what was
// acknowledged is there, what is there is whole, and nobody waits.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>
#include <thread>

#include "host/store/private_store.h"
#include "tests/native/store_process.h"
#include "tests/native/support.h"

namespace native_test {
namespace {

namespace fs = std::filesystem;

constexpr double kAMoment = 5;  // seconds; a lock that GNUstep itself waits for takes 20

class StoreFaultsTest : public testing::Test {
 protected:
  StoreFaultsTest()
      : domain_(testing::UnitTest::GetInstance()->current_test_info()->name() +
                std::to_string(getpid())) {}
  ~StoreFaultsTest() override { fs::remove(host::storedDomain(domain_)); }

  [[nodiscard]] const std::string& domain() const { return domain_; }
  /// What store_probe says of such faults, by line and word.
  [[nodiscard]] std::vector<std::vector<std::string>> failing(
      std::vector<std::string> faults) const {
    EXPECT_EQ(storeProbe(domain_, {"write", "0"}), "yes");
    faults.insert(faults.begin(), {domain_, "fail"});
    StoreProcess process(ZEL_STORE_PROBE, std::move(faults), ZEL_STORE_FAULTS);
    EXPECT_EQ(process.result(), 0) << process.log();
    std::vector<std::vector<std::string>> lines;
    std::istringstream output(process.output());
    for (std::string line; std::getline(output, line);) {
      std::istringstream words(line);
      lines.emplace_back(std::istream_iterator<std::string>(words),
                         std::istream_iterator<std::string>());
    }
    return lines;
  }
  /// How many times synchronize said no.
  static int checkFaults(const std::vector<std::vector<std::string>>& lines) {
    EXPECT_GT(lines.size(), 12U);
    int refused = 0;
    for (const auto& line : lines) {
      if (line.size() == 1) {
        EXPECT_LT(std::stoi(line[0]), 1000 * kAMoment);
        continue;
      }
      const int call = std::stoi(line.at(0));
      const std::string generation = line[0];
      const std::string before = std::to_string(call - 1);
      if (line.at(1) == "yes") {
        EXPECT_EQ(line.at(2), generation) << "acknowledged at call " << call;
      } else {
        EXPECT_TRUE(line.at(2) == generation || line[2] == before) << line[2] << " at " << call;
        ++refused;
      }
      EXPECT_EQ(line.at(3), generation) << "in memory, at call " << call;
      EXPECT_EQ(line.at(4), "yes") << "at call " << call;
      EXPECT_EQ(line.at(5), generation) << "at call " << call;
    }
    return refused;
  }

 private:
  std::string domain_;
};

class FailingCallTest : public StoreFaultsTest, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(, FailingCallTest, testing::Values("ENOSPC", "EIO", "EACCES"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_P(FailingCallTest, LosesNothing) { EXPECT_GT(checkFaults(failing({GetParam()})), 5); }

TEST_P(FailingCallTest, LosesNothingWhenAllFurtherOnesFail) {
  EXPECT_GT(checkFaults(failing({GetParam(), "on"})), 5);
}

// A power failure can't be tried; what it takes to outlive one can be seen.
TEST_F(StoreFaultsTest, TheNewFileIsOnDiskBeforeItTakesThePlaceOfTheOldOne) {
  StoreProcess process(ZEL_STORE_PROBE, {domain(), "names"}, ZEL_STORE_FAULTS);
  EXPECT_EQ(process.result(), 0) << process.log();
  std::string names = process.output();
  for (std::size_t at = 0; (at = names.find("64")) != std::string::npos;) names.erase(at, 2);
  EXPECT_NE(names.find(" open write fsync close rename open fsync close"), std::string::npos)
      << names;
}

TEST_F(StoreFaultsTest, AShortWriteIsGoneOnWith) { EXPECT_EQ(checkFaults(failing({"short"})), 0); }

// The one call that may fail with this error.
TEST_F(StoreFaultsTest, AFileSystemWithoutTheKernelsLocksWillDo) {
  const int refused = checkFaults(failing({"EIO"}));
  EXPECT_EQ(checkFaults(failing({"ENOLCK"})), refused - 1);
}

// The file is read to its end and written in one piece: three calls that are made again.
TEST_F(StoreFaultsTest, AnInterruptedCallIsMadeAgain) {
  const int refused = checkFaults(failing({"EIO"}));
  EXPECT_EQ(checkFaults(failing({"EINTR"})), refused - 3);
}

TEST_F(StoreFaultsTest, AProcessThatEndsAtAnyCallHoldsNobodyUp) {
  std::string before = "0";
  ASSERT_EQ(storeProbe(domain(), {"write", before}), "yes");
  bool was_killed = true;
  int call = 0;
  while (was_killed) {
    ++call;
    const std::string generation = std::to_string(call);
    StoreProcess victim(ZEL_STORE_PROBE, {domain(), "kill", generation, generation},
                        ZEL_STORE_FAULTS);
    was_killed = victim.result() != 0;
    EXPECT_EQ(victim.result(), was_killed ? 128 + SIGKILL : 0) << victim.log();
    StoreProcess next(ZEL_STORE_PROBE, {domain(), "read"});
    EXPECT_TRUE(next.hasEnded(kAMoment)) << "at call " << call;
    const std::string found = next.output();
    EXPECT_TRUE(found == generation + "\n" || (was_killed && found == before + "\n")) << found;
    StoreProcess writer(ZEL_STORE_PROBE, {domain(), "write", generation});
    EXPECT_TRUE(writer.hasEnded(kAMoment)) << "at call " << call;
    EXPECT_EQ(writer.output(), "yes\n");
    before = generation;
  }
  EXPECT_GT(call, 12);
}

// A longer round is made with ZEL_KILLS=1000 in the environment.
TEST_F(StoreFaultsTest, AProcessThatIsEndedAtAnyTimeLosesNothingThatWasAcknowledged) {
  const char* const wanted = std::getenv("ZEL_KILLS");
  const int kills = wanted == nullptr ? 20 : std::atoi(wanted);
  std::mt19937 random(11);
  int acknowledged = 0;
  int longest = 0;  // milliseconds
  for (int i = 0; i < kills; ++i) {
    StoreProcess victim(ZEL_STORE_PROBE, {domain(), "forever", std::to_string(acknowledged + 1)});
    // Where disks are slow, some would never get to write before they are ended.
    if (i % 2 == 0) {
      EXPECT_TRUE(victim.hasWritten()) << victim.log();
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 300000));
    victim.kill();
    victim.result();
    const std::string output = victim.output();
    const std::size_t end = output.rfind('\n');
    if (end != std::string::npos) {
      const std::size_t begin = end == 0 ? 0 : output.rfind('\n', end - 1) + 1;
      acknowledged = std::stoi(output.substr(begin, end - begin));
    }
    const auto start = std::chrono::steady_clock::now();
    const std::string found = storeProbe(domain(), {"read"});
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    longest = std::max(longest, static_cast<int>(took.count()));
    if (acknowledged == 0 && found == "none") continue;
    ASSERT_TRUE(found == std::to_string(acknowledged) || found == std::to_string(acknowledged + 1))
        << found << " after " << acknowledged << ", kill " << i;
    acknowledged = std::stoi(found);
  }
  EXPECT_GE(acknowledged, kills / 2);
  EXPECT_LT(longest, 1000 * kAMoment);
  RecordProperty("acknowledged", acknowledged);
  RecordProperty("longest_start_in_milliseconds", longest);
}

}  // namespace
}  // namespace native_test
