// What a program may cost at most, in time of the processor.
#include <ctime>

#include "tests/runner/runner_test.h"

namespace tests {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr double kSlowness = 10;  // of instrumented code
#elif defined(__has_feature)
constexpr double kSlowness = __has_feature(address_sanitizer) ? 10 : 1;
#else
constexpr double kSlowness = 1;
#endif

class SpeedTest : public RunnerTest {
 protected:
  // Seconds that a million turns of a loop take. @param body what is in it.
  double million(const std::string& body) {
    const std::clock_t start = std::clock();
    EXPECT_EQ(run("Dim s As New SampleZEL\nDim i As Integer\nDim n As Integer\nDim b As Boolean\n"
                  "For i = 1 To 1000000\n" +
                  body + "\nNext"),
              "");
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  }
};

TEST_F(SpeedTest, AMillionEmptyTurnsTakeLessThanASecond) { EXPECT_LT(million(""), 1 * kSlowness); }

// The functions of the sample plugin do next to nothing, so all of it is the call's.
TEST_F(SpeedTest, ACallOfAPluginTakesLessThanAMicrosecond) {
  const double empty = million("");
  EXPECT_LT(million("n = s.number") - empty, 1 * kSlowness);
  EXPECT_LT(million("b = s.isEmpty(\"text\")") - empty, 1 * kSlowness);
}

}  // namespace
}  // namespace tests
