// What is typed on a terminal, in a UTF-8 locale and in one that isn't.
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <regex>
#include <string>

#include "tests/runner/command/terminal.h"
#include "tests/support/folder.h"

namespace tests {
namespace {

constexpr char kControlC[] = "\x03";
constexpr char kControlD[] = "\x04";
constexpr char kUp[] = "\x1B[A";
constexpr char kBanner[] =
    "What is typed runs at once. Tab completes names; help tells more, quit ends.\r\n";

// Where the cursor is after this output, that stays in one line. Of the terminal's sequences, only
// the one that goes to the right moves it.
int columnAfter(int column, const std::string& output) {
  static const std::regex kPieces("\x1B\\[([?0-9;]*)([@A-Za-z])|[^\x1B]");
  for (std::sregex_iterator piece(output.begin(), output.end(), kPieces), end; piece != end;
       ++piece) {
    const std::string text = piece->str();
    if (text == "\r") {
      column = 0;
    } else if (text == "\b") {
      --column;
    } else if (text.front() != '\x1B') {
      ++column;
    } else if (piece->str(2) == "C") {
      column += piece->str(1).empty() ? 1 : std::stoi(piece->str(1));
    }
  }
  return column;
}

class PromptTest : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    start();
    if (!terminal_->isThere()) GTEST_SKIP() << "This needs a terminal, and the system gives none.";
  }
  // A session, with the lines remembered that earlier ones of the test had.
  void start(const char* term = "dumb") {
    terminal_.reset();
    terminal_ = std::make_unique<Terminal>(
        std::vector<std::string>{std::string("LC_ALL=") + GetParam(), std::string("TERM=") + term,
                                 "XDG_STATE_HOME=" + state_.path().native()});
  }
  Terminal& terminal() { return *terminal_; }
  [[nodiscard]] const TemporaryFolder& state() const { return state_; }

 private:
  TemporaryFolder state_;
  std::unique_ptr<Terminal> terminal_;
};

TEST_P(PromptTest, BeginsWithOneLine) {
  EXPECT_EQ(terminal().until("> "), kBanner);
  terminal().type(kControlD);
  EXPECT_EQ(terminal().status(), 0);
}

TEST_P(PromptTest, ABlockComesBeforeAnyCall) {
  ASSERT_TRUE(terminal().shows("> "));
  for (const char* const begin : {"Do", "If True Then", "Sub F()"}) {
    terminal().type(std::string(begin) + "\n");
    EXPECT_TRUE(terminal().shows("… ")) << begin;
    terminal().type(kControlC);
    EXPECT_TRUE(terminal().shows("> ")) << begin;
  }
  terminal().type("If True Then\nPrint Uppercase(\"done\")\nEnd If\n");
  EXPECT_TRUE(terminal().shows("\r\nDONE\r\n"));
}

TEST_P(PromptTest, TakesEveryLetter) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Dim d As New NSUserDefaultsZEL\n");
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("d.stringForKey(\"greeting\") = \"Grüße, 世界\"\n");
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Print Uppercase(d.stringForKey(\"greeting\"))\n");
  EXPECT_TRUE(terminal().shows("\r\nGRÜßE, 世界\r\n"));
  terminal().type("Print Str(Len(d.stringForKey(\"greeting\")))\n");
  EXPECT_TRUE(terminal().shows("\r\n9\r\n"));
  // A whole letter is rubbed out.
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Print Str(Len(\"aß\x7F\"))\n");
  EXPECT_TRUE(terminal().shows("\r\n1\r\n"));
}

TEST_P(PromptTest, AValueAloneIsShown) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Dim d As New NSUserDefaultsZEL\n");
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("d.integerForKey(\"n\") = 42\n");
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("d.integerForKey(\"n\")\n");
  EXPECT_TRUE(terminal().shows("\r\nInt32 42\r\n"));
}

TEST_P(PromptTest, HelpIsThere) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("help\n");
  EXPECT_TRUE(terminal().shows("\r\n  quit, exit, Ctrl-D            end the session\r\n"));
  EXPECT_TRUE(
      terminal().shows("docs/language.md has the language, docs/methods.md every method.\r\n"));
  EXPECT_TRUE(terminal().shows("> "));
}

TEST_P(PromptTest, EndsByWordsAndAtTheEndOfItsInput) {
  for (const char* const end : {"quit\n", "exit\n", " Quit \n", kControlD}) {
    start();
    ASSERT_TRUE(terminal().shows("> "));
    terminal().type(end);
    EXPECT_EQ(terminal().status(), 0) << end;
  }
}

TEST_P(PromptTest, ControlCDropsTheLineAndNotTheSession) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Dim kept As Integer = 5\n");
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Print \"never");
  ASSERT_TRUE(terminal().shows("never"));
  terminal().type(kControlC);
  ASSERT_TRUE(terminal().shows("^C\r\n"));
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("kept + 1\n");
  EXPECT_TRUE(terminal().shows("\r\nInt32 6\r\n"));
}

TEST_P(PromptTest, ControlCStandsBehindWhatItDrops) {
  start("xterm");  // with a mode that is left before the next line
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Print \"never");
  ASSERT_TRUE(terminal().shows("never"));
  terminal().type(kControlC);
  EXPECT_EQ(terminal().until("\r\n"), "^C");
  ASSERT_TRUE(terminal().shows("> "));
  // Also when the cursor isn't at its end, but behind what is put in at its start.
  terminal().type("1234567\x01");
  terminal().type("0");
  ASSERT_TRUE(terminal().shows("0"));
  constexpr int kBehindThat = 3;  // the prompt takes two columns
  terminal().type(kControlC);
  EXPECT_EQ(columnAfter(kBehindThat, terminal().until("^C\r\n")), 10);
}

TEST_P(PromptTest, ControlCEndsWhatRunsAndNotTheSession) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Print \"begun\"\n");
  ASSERT_TRUE(terminal().shows("\r\nbegun\r\n"));
  terminal().type("Sub turn()\nPrint Uppercase(\"turns\") : Do\nLoop\nEnd Sub\n");
  ASSERT_TRUE(terminal().shows("End Sub\r\n> "));
  terminal().type("turn\n");
  ASSERT_TRUE(terminal().shows("\r\nTURNS\r\n"));
  terminal().type(kControlC);
  EXPECT_TRUE(terminal().shows("Interrupted\r\n  at line:2 in turn\r\n  at line:1\r\n> "));
  terminal().type("1 + 1\n");
  EXPECT_TRUE(terminal().shows("\r\nInt32 2\r\n"));
}

TEST_P(PromptTest, ControlCEndsTheWaitForALine) {
  ASSERT_TRUE(terminal().shows("> "));
  // The wait has or hasn't begun when Ctrl-C comes: it isn't seen from here.
  for (int i = 0; i < 20; ++i) {
    terminal().type("Print Uppercase(\"waits\") : Print Input\n");
    ASSERT_TRUE(terminal().shows("\r\nWAITS\r\n"));
    terminal().type(kControlC);
    ASSERT_TRUE(terminal().shows("Interrupted\r\n  at line:1\r\n> "));
  }
  terminal().type("Print Uppercase(Input)\n");
  ASSERT_TRUE(terminal().shows("Input)\r\n"));
  terminal().type("typed\n");
  EXPECT_TRUE(terminal().shows("TYPED\r\n"));
}

TEST_P(PromptTest, ControlCBetweenLinesEndsNothing) {
  ASSERT_TRUE(terminal().shows("> "));
  for (int i = 0; i < 50; ++i) {
    terminal().type("1 + 1\n");
    ASSERT_TRUE(terminal().shows("\r\nInt32 2"));
    terminal().type(kControlC);
    ASSERT_TRUE(terminal().shows("> "));
  }
}

TEST_P(PromptTest, ABlockMayHaveBlankAndIndentedLines) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("For i As Integer = 1 To 2\n\n\tPrint Str(i * 21)\n\nNext\n");
  EXPECT_TRUE(terminal().shows("\r\n21\r\n42\r\n"));
}

TEST_P(PromptTest, WhatIsPastedRuns) {
  start("xterm");
  ASSERT_TRUE(terminal().shows("> "));
  // As a terminal says it to a program that asks for it.
  terminal().type(
      "\x1B[200~Dim n As Integer = 5\n\nIf n = 5 Then\n\tPrint Uppercase(\"five\")\n\n"
      "End If\nPrint Lowercase(\"LAST\")\x1B[201~\n");
  EXPECT_TRUE(terminal().shows("FIVE\r\nlast\r\n"));
}

TEST_P(PromptTest, TabCompletesMethodsBehindAPoint) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Dim d As New NSUserDefaultsZEL\n");
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("d.integerFor\t(\"n\")\n");
  EXPECT_TRUE(terminal().shows("\r\nInt32 0\r\n"));
  ASSERT_TRUE(terminal().shows("> "));
  // What could be meant is listed: nothing of the language's own functions.
  terminal().type("d.s\t\t");
  const std::string list = terminal().until("synchronize");
  EXPECT_NE(list.find("stringForKey"), std::string::npos) << list;
  for (const char* const function : {"Sqrt", "Split", "StrComp"})
    EXPECT_EQ(list.find(function), std::string::npos) << list;
}

TEST_P(PromptTest, LinesAreRememberedFromOneTimeToTheNext) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Print Uppercase(\"grün\")\n");
  ASSERT_TRUE(terminal().shows("\r\nGRÜN\r\n"));
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("quit\n");
  ASSERT_EQ(terminal().status(), 0);
  std::ifstream file(state().path() / "hostrun/history");
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(text, "Print Uppercase(\"grün\")\nquit\n");
  start();
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type(std::string(kUp) + kUp + "\n");
  EXPECT_TRUE(terminal().shows("\r\nGRÜN\r\n"));
}

TEST_P(PromptTest, AStrayByteIsNoReasonToEnd) {
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Print \"\xFF\"\n");
  ASSERT_TRUE(terminal().shows("> "));
  terminal().type("Print Uppercase(\"goes on\")\n");
  EXPECT_TRUE(terminal().shows("\r\nGOES ON\r\n"));
}

INSTANTIATE_TEST_SUITE_P(Locales, PromptTest, testing::Values("C", "C.UTF-8"));

// --- programs on a terminal

TEST(TerminalTest, ControlCSaysWhereTheProgramWas) {
  const TemporaryFolder folder;
  const std::string file = (folder.path() / "loops.xojo_script").native();
  std::ofstream(file) << "Sub turn()\nPrint \"turns\" : While True\nWend\nEnd Sub\n\nturn\n";
  Terminal terminal({"TMPDIR=" + folder.path().native()}, {file});
  if (!terminal.isThere()) GTEST_SKIP() << "This needs a terminal, and the system gives none.";
  ASSERT_TRUE(terminal.shows("turns\r\n"));
  terminal.type(kControlC);
  EXPECT_TRUE(
      terminal.shows("Interrupted\r\n  at " + file + ":2 in turn\r\n  at " + file + ":6\r\n"));
  EXPECT_EQ(terminal.status(), 130);
}

TEST(TerminalTest, ALogLineTakesOneLine) {
  const TemporaryFolder folder;
  const std::string file = (folder.path() / "logs.xojo_script").native();
  std::ofstream(file) << "Dim x As New Dictionary\nx.Value(1) = 2\nTry\n"
                         "NSUserDefaultsZEL.standardUserDefaults.setDictionaryValue("
                         "\"a key that is long\" + EndOfLine + \"and has two lines\", x)\n"
                         "Catch e As NSExceptionZEL\nPrint \"caught\"\nEnd Try\n";
  Terminal terminal({}, {file});
  if (!terminal.isThere()) GTEST_SKIP() << "This needs a terminal, and the system gives none.";
  EXPECT_EQ(terminal.until("\r\ncaught\r\n"),
            "log: A NSInvalidArgumentException: attem ...  of class NSIntNumber, Info: (null)");
}

}  // namespace
}  // namespace tests
