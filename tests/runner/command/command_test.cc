// The command hostrun, as people start it.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/folder.h"
#include "tests/support/process.h"

namespace tests {
namespace {

// Runs hostrun by the shell. @param rest of the command line. @param messages where they go.
Ending hostrun(const std::string& rest, const std::string& before = "",
               const std::string& messages = "2>&1") {
  return run(before + ZEL_HOSTRUN " " + rest + " " + messages);
}

// A file in the tests' own folder, gone at the end.
class Program {
 public:
  Program(const std::string& name, const std::string& text)
      : file_(testing::TempDir() + name + ".xojo_script") {
    std::ofstream(file_) << text;
  }
  ~Program() { std::remove(file_.c_str()); }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  [[nodiscard]] const std::string& file() const { return file_; }

 private:
  std::string file_;
};

TEST(CommandTest, AWrongCommandLineEndsWith2) {
  const struct {
    const char* rest;
    const char* problem;
  } rows[] = {
      {"</dev/null",
       "hostrun: the program is missing. Name one, or \"-\" for the standard input.\n"
       "See: hostrun --help\n"},
      {"--what -", "hostrun: I don't know \"--what\".\nSee: hostrun --help\n"},
      {"--plugin", "hostrun: --plugin lacks its value.\nSee: hostrun --help\n"},
      {"--store", "hostrun: --store lacks its value.\nSee: hostrun --help\n"},
      {"--store ''", "hostrun: --store takes a folder, not an empty name.\nSee: hostrun --help\n"},
      {"--host-version new -",
       "hostrun: --host-version takes a number such as 2013.03, not \"new\".\n"
       "See: hostrun --help\n"},
      {"/no/such/program", "hostrun: can't read /no/such/program: No such file or directory\n"},
  };
  for (const auto& row : rows) {
    const Ending result = hostrun(row.rest);
    EXPECT_EQ(result.output, row.problem);
    EXPECT_EQ(result.status, 2) << row.rest;
  }
  const Ending missing = hostrun("--plugin /no/such/plugin.so -");
  EXPECT_EQ(
      missing.output,
      "hostrun: /no/such/plugin.so: cannot open shared object file: No such file or directory\n"
      "--plugin takes the file of a plugin, such as NSUserDefaultsZEL.so.\n");
  EXPECT_EQ(missing.status, 2);
}

TEST(CommandTest, BundlesAreForMacos) {
  const Ending bundle = hostrun("--plugin some.bundle -");
  EXPECT_EQ(bundle.output,
            "hostrun: some.bundle is a macOS bundle: add --macos.\n"
            "See: hostrun --help\n");
  EXPECT_EQ(bundle.status, 2);
  EXPECT_EQ(hostrun("--macos --plugin some.so -").status, 2);
}

TEST(CommandTest, WhatIsNoPluginIsNamed) {
  const Program program("program", "Print \"never\"\n");
  const std::string help = "\n--plugin takes the file of a plugin, such as NSUserDefaultsZEL.so.\n";
  const struct {
    std::string plugin;
    std::string problem;
  } rows[] = {
      {program.file(), program.file() + ": file too short"},
      {"/tmp", "/tmp: cannot read file data: Is a directory"},
      // One that the process has already, and one that it hasn't.
      {ZEL_NATIVE, ZEL_NATIVE " has no REALPluginMain: it is no plugin"},
      {ZEL_LIBRARY, ZEL_LIBRARY " has no REALPluginMain: it is no plugin"},
  };
  for (const auto& row : rows) {
    const Ending result = hostrun("--plugin " + row.plugin + " " + program.file());
    EXPECT_EQ(result.output, "hostrun: " + row.problem + help);
    EXPECT_EQ(result.status, 2);
  }
}

TEST(CommandTest, APluginThatCrashesAtItsStartIsNamed) {
  const Program program("program", "Print \"never\"\n");
  const Ending result = hostrun("--plugin " ZEL_HASTY_PLUGIN " " + program.file());
  EXPECT_EQ(result.output,
            "hostrun: " ZEL_HASTY_PLUGIN
            " crashed in its REALPluginMain.\n"
            "It had asked the host for \"TimeMachineStart\", which this host doesn't have.\n"
            "--plugin takes the file of a plugin, such as NSUserDefaultsZEL.so.\n");
  EXPECT_EQ(result.status, 1);
}

TEST(CommandTest, AVersionOfAHostIsANumber) {
  for (const std::string version : {"-1", "nan", "inf", "0", "1e3", "2013.03x", "''", "20130"}) {
    const Ending result = hostrun("--host-version " + version + " -", "echo | ");
    EXPECT_EQ(result.output, "hostrun: --host-version takes a number such as 2013.03, not \"" +
                                 (version == "''" ? "" : version) + "\".\nSee: hostrun --help\n");
    EXPECT_EQ(result.status, 2) << version;
  }
}

TEST(CommandTest, OutputThatIsLostIsNoSuccess) {
  const Program printing("printing", "Print \"lost\"\n");
  const Program silent("silent", "Dim n As Integer = 5\n");
  const Program endless("endless", "Do\nPrint \"again\"\nLoop\n");
  const struct {
    std::string rest;
    std::string output;
    int status;
  } rows[] = {
      {printing.file() + " 2>&1 >/dev/full",
       "hostrun: can't write the output: No space left on device\n", 1},
      {printing.file() + " 2>&1 >&-", "hostrun: can't write the output: Bad file descriptor\n", 1},
      {"--help 2>&1 >/dev/full", "hostrun: can't write the output: No space left on device\n", 1},
      {endless.file() + " 2>&1 >/dev/full",
       "hostrun: can't write the output: No space left on device\n", 1},
      {silent.file() + " 2>&1 >&-", "", 0},
      {printing.file() + " " + silent.file() + " 2>&1 >/dev/full",
       "hostrun: can't write the output: No space left on device\n", 1},
  };
  for (const auto& row : rows) {
    const Ending result = hostrun(row.rest, "", "");
    EXPECT_EQ(result.output, row.output) << row.rest;
    EXPECT_EQ(result.status, row.status) << row.rest;
  }
  // Who reads enough of a pipe and closes it hears nothing more.
  const Ending piped = hostrun(endless.file() + "; echo $? >&2) | head -n 1", "(", "");
  EXPECT_EQ(piped.output, "again\n1\n");
}

TEST(CommandTest, AFolderIsNoProgram) {
  const Ending result = hostrun("/tmp");
  EXPECT_EQ(result.output, "hostrun: can't read /tmp: Is a directory\n");
  EXPECT_EQ(result.status, 2);
}

TEST(CommandTest, AFolderForTheStoreThatCannotBeWrittenIsNamed) {
  const Program program("program", "Print \"never\"\n");
  const std::string help = ". Set TMPDIR to a folder that you may write, or give --store DIR.\n";
  const struct {
    std::string folder;
    std::string reason;
  } rows[] = {{"/no/such", "No such file or directory"},
              {program.file(), "Not a directory"},
              {"/proc", "No such file or directory"}};
  for (const auto& row : rows) {
    const Ending result = hostrun(program.file(), "TMPDIR=" + row.folder + " ");
    EXPECT_EQ(result.output, "hostrun: can't make a store for what is set, in " + row.folder +
                                 ": " + row.reason + help);
    EXPECT_EQ(result.status, 1) << row.folder;
  }
  const TemporaryFolder folder;
  const Ending kept = hostrun("--store " + folder.path().native() + " -",
                              "echo 'Print \"kept\"' | TMPDIR=/no/such ");
  EXPECT_EQ(kept.output, "kept\n");
}

TEST(CommandTest, NoStoreIsLeftBehindByASignal) {
  const Program endless("endless", "Print \"begun\"\nDo\nLoop\n");
  const struct {
    const char* signal;
    int status;
  } rows[] = {{"TERM", 143}, {"HUP", 129}, {"INT", 130}};
  for (const std::string& programs : {endless.file(), endless.file() + " " + endless.file()}) {
    for (const auto& row : rows) {
      const TemporaryFolder folder;
      std::string script = "export TMPDIR='";
      script.append(folder.path().native()).append("'; " ZEL_HOSTRUN " ").append(programs);
      // It runs once there is something in the store's folder.
      script.append(
          " >$TMPDIR/out 2>$TMPDIR/messages & "
          "until ls -d $TMPDIR/private-store-*/Defaults >$TMPDIR/ls 2>&1; do sleep 0.05; done; "
          "sleep 0.5; kill -");
      script.append(row.signal)
          .append(
              " $!; wait $!; echo $?; cd $TMPDIR; "
              "ls -d private-store-* 2>/dev/null");
      const Ending result = run(script);
      EXPECT_EQ(result.output, std::to_string(row.status) + "\n") << programs << row.signal;
    }
  }
}

TEST(CommandTest, AByteOrderMarkIsSkipped) {
  const Program program("marked", "\xEF\xBB\xBFPrint \"first\"\nPrint \"second\" +\n");
  EXPECT_EQ(hostrun(program.file()).output.substr(program.file().size(), 4), ":2:1");
  const Program good("good", "\xEF\xBB\xBFPrint \"first\"\n");
  EXPECT_EQ(hostrun(good.file()).output, "first\n");
  EXPECT_EQ(hostrun("- <" + good.file()).output, "first\n");
}

TEST(CommandTest, WhatIsNoTextArrivesAsReplacements) {
  const Program bytes("bytes",
                      "Print \"a\" + DecodeHex(\"FF41C3\") + \"ß\"\n"
                      "System.DebugLog DecodeHex(\"80\")\n"
                      "Raise New KeyNotFoundException(DecodeHex(\"E9\"))\n");
  EXPECT_EQ(hostrun(bytes.file(), "", "2>/dev/null").output,
            "a\xEF\xBF\xBD"
            "A\xEF\xBF\xBDß\n");
  EXPECT_EQ(
      hostrun(bytes.file(), "", "2>&1 >/dev/null").output,
      "\xEF\xBF\xBD\nUnhandled KeyNotFoundException: \xEF\xBF\xBD\n  at " + bytes.file() + ":3\n");
  const Program broken("broken", "Print \"caf\xE9\"\n");
  EXPECT_EQ(hostrun(broken.file()).output,
            broken.file() +
                ":1:11: error: This byte is no text in UTF-8.\n"
                "  1 | Print \"caf\xEF\xBF\xBD\"\n    |           ^\n");
}

TEST(CommandTest, OfALongStackTheEndsAreShown) {
  const Program endless("endless",
                        "Function f(n As Integer) As Integer\nReturn f(n + 1)\n"
                        "End Function\nPrint Str(f(1))\n");
  const std::string in = "  at " + endless.file() + ":2 in f\n";
  std::string ten;
  for (int i = 0; i < 10; ++i) ten += in;
  const std::string begin =
      "Unhandled StackOverflowException: Methods call each other too deeply.\n" + ten + "  ... ";
  const std::string end = " more ...\n" + ten.substr(in.size()) + "  at " + endless.file() + ":4\n";
  const Ending result = hostrun(endless.file());
  EXPECT_EQ(result.output.substr(0, begin.size()), begin);
  EXPECT_EQ(result.output.substr(result.output.size() - end.size()), end);
  EXPECT_LT(result.output.size(), begin.size() + end.size() + 10);
  EXPECT_EQ(result.status, 1);
}

TEST(CommandTest, HelpIsNoMistake) {
  const Ending result = hostrun("--help");
  EXPECT_EQ(result.output.substr(0, 15), "Usage: hostrun ");
  EXPECT_EQ(result.status, 0);
}

TEST(CommandTest, AProgramComesFromTheStandardInput) {
  const Ending result = hostrun("-", "echo 'Print \"hello\"' | ");
  EXPECT_EQ(result.output, "hello\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CommandTest, AnExceptionThatNothingCatchesEndsWith1) {
  const Program program("raises",
                        "Print \"before\"\nSub f()\nRaise New KeyNotFoundException(\"gone\")\n"
                        "End Sub\nf\nPrint \"after\"\n");
  const Ending result = hostrun(program.file());
  EXPECT_EQ(result.output, "before\nUnhandled KeyNotFoundException: gone\n  at " + program.file() +
                               ":3 in f\n  at " + program.file() + ":5\n");
  EXPECT_EQ(result.status, 1);
}

TEST(CommandTest, NothingRunsOfAProgramWithAMistake) {
  const Program program("mistake", "Print \"before\"\nPrint 5\n");
  EXPECT_EQ(hostrun(program.file()).output,
            program.file() +
                ":2:7: error: Argument 1 of \"Print\" must be String, but this is Integer. "
                "Str makes a text of a number.\n"
                "  2 | Print 5\n    |       ^\n"
                "  declared: Print(text As String)\n");
  EXPECT_EQ(hostrun(program.file()).status, 1);
}

TEST(CommandTest, CheckRunsNothing) {
  const Program program("checked", "Print \"printed\"\n");
  const Ending result = hostrun("--check " + program.file());
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.status, 0);
}

TEST(CommandTest, WhatIsLeftOverIsSaidOnRequest) {
  const Program program("leaks", "Dim d As New Dictionary\nd.Value(\"itself\") = d\n");
  EXPECT_EQ(hostrun(program.file()).status, 0);
  const Ending result = hostrun("--leaks " + program.file());
  EXPECT_EQ(result.output.substr(0, 33), "Left over:\nobject of Dictionary (");
  EXPECT_EQ(result.status, 1);
}

TEST(CommandTest, TheDomainOfProgramsIsTheRunnersOwn) {
  const Program program("domain",
                        "Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults\n"
                        "d.integerForKey(\"n\") = 5\n"
                        "Print Str(d.persistentDomainForName(\"hostrun\").Value(\"n\"))\n");
  EXPECT_EQ(hostrun("--plugin " ZEL_PLUGIN " " + program.file()).output, "5\n");
}

TEST(CommandTest, ProgramsShareAStoreThatIsGoneAfterwards) {
  const Program writer("writer",
                       "Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults\n"
                       "d.integerForKey(\"n\") = 5\nPrint Str(d.synchronize)\n");
  const Program reader("reader",
                       "Print Str(NSUserDefaultsZEL.standardUserDefaults."
                       "integerForKey(\"n\"))\n");
  const std::string plugin = "--plugin " ZEL_PLUGIN " ";
  EXPECT_EQ(hostrun(plugin + writer.file() + " " + reader.file()).output, "True\n5\n");
  EXPECT_EQ(hostrun(plugin + reader.file()).output, "0\n");
}

TEST(CommandTest, AStoreIsKeptWhereItIsAskedFor) {
  const TemporaryFolder folder;
  const std::string inStore =
      "--plugin " ZEL_PLUGIN " --store '" + (folder.path() / "my store").native() + "' ";
  const Program counter("counter",
                        "Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults\n"
                        "d.integerForKey(\"n\") = d.integerForKey(\"n\") + 1\n"
                        "Print Str(d.synchronize) + Str(d.integerForKey(\"n\"))\n");
  EXPECT_EQ(hostrun(inStore + counter.file()).output, "True1\n");
  EXPECT_EQ(hostrun(inStore + counter.file() + " " + counter.file()).output, "True2\nTrue3\n");
  // Elsewhere, nothing of it is there.
  EXPECT_EQ(hostrun("--plugin " ZEL_PLUGIN " " + counter.file()).output, "True1\n");
  EXPECT_EQ(hostrun(inStore + counter.file()).output, "True4\n");
}

TEST(CommandTest, WhatAProgramHasSetIsKeptWhenItEnds) {
  const TemporaryFolder folder;
  const std::string inStore = "--plugin " ZEL_PLUGIN " --store '" + folder.path().native() + "' ";
  const std::string defaults = "NSUserDefaultsZEL.standardUserDefaults";
  const Program first("first", defaults + ".stringForKey(\"mood\") = \"fine \xF0\x9F\x98\x80\"\n");
  const Program second("second", "Print " + defaults + ".stringForKey(\"mood\")\n");
  EXPECT_EQ(hostrun(inStore + first.file()).output, "");
  EXPECT_EQ(hostrun(inStore + second.file()).output, "fine \xF0\x9F\x98\x80\n");
  EXPECT_EQ(hostrun("--plugin " ZEL_PLUGIN " " + first.file() + " " + second.file()).output,
            "fine \xF0\x9F\x98\x80\n");
}

TEST(CommandTest, AFolderThatCannotBeAStoreIsNamed) {
  const Program program("program", "Print \"never\"\n");
  const Ending inFile = hostrun("--store " + program.file() + " " + program.file());
  EXPECT_EQ(inFile.output,
            "hostrun: --store " + program.file() + ": Not a directory\nSee: hostrun --help\n");
  EXPECT_EQ(inFile.status, 2);
}

TEST(CommandTest, HostsOfEveryVersionRunThePlugin) {
  const Program program("version",
                        "Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults\n"
                        "d.setStringArrayValue \"list\", Array(\"a\", \"b\")\n"
                        "Print Join(d.stringArrayForKey(\"list\"), \"\")\n");
  for (const char* const version : {"2011.04", "2012", "2013.0", "2013.03", "2013.9", "2025.01"}) {
    const Ending result = hostrun(std::string("--leaks --plugin " ZEL_PLUGIN " --host-version ") +
                                  version + " " + program.file());
    EXPECT_EQ(result.output, "ab\n") << version;
  }
}

TEST(CommandTest, TheCompanionsExceptionsReachAProgram) {
  const Program program("companion",
                        "Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults\n"
                        "Try\nd.integerForKey(\"\") = 1\nCatch e As NSExceptionZEL\n"
                        "Print e.name\nPrint Str(e.Message = e.reason)\nEnd Try\n");
  for (const char* const plugins : {"--plugin " ZEL_COMPANION " --plugin " ZEL_PLUGIN " ",
                                    "--plugin " ZEL_PLUGIN " --plugin " ZEL_COMPANION " "}) {
    const Ending result = hostrun("--leaks " + (plugins + program.file()), "", "2>/dev/null");
    EXPECT_EQ(result.output, "NSInvalidArgumentException\nTrue\n") << plugins;
    EXPECT_EQ(result.status, 0);
  }
}

}  // namespace
}  // namespace tests
