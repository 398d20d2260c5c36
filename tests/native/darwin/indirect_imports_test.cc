// The step between the compiler and the assembler of 32-bit macOS.
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/folder.h"
#include "tests/support/process.h"

namespace tests {
namespace {

using testing::HasSubstr;

class IndirectImportsTest : public testing::Test {
 protected:
  IndirectImportsTest() {
    std::ofstream(folder_ / "imports.txt") << "[libraries]\nOne 1.0 /usr/lib/one.dylib\n"
                                              "[symbols]\n# One any _comment because\n"
                                              "One any _known because\n";
  }

  /// What becomes of the assembly.
  Ending rewritten(const std::string& assembly) const {
    std::ofstream(folder_ / "input.s") << assembly;
    return run("awk -v imports=" + (folder_ / "imports.txt").string() +
               " -f " ZEL_PROJECT
               "/native/darwin/indirect_imports.awk"
               " " +
               (folder_ / "input.s").string());
  }

  TemporaryFolder temporary_;
  std::filesystem::path folder_ = temporary_.path();
};

TEST_F(IndirectImportsTest, LeavesOtherCodeAlone) {
  const std::string code =
      "\t.globl\t_a\n_a:\n\tcalll\t_b\n\tcalll\t*%eax\n\tjmp\tLBB0_1\n\tmovl\t_known, %eax\n"
      "\tcalll\t_comment\n";
  const Ending outcome = rewritten(code);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, code);
}

TEST_F(IndirectImportsTest, CallsImportsThroughPlainPointers) {
  const Ending outcome = rewritten(
      "_a:\n\tcalll\t_known\n\tjmp\t_known                  ## TAILCALL\n"
      ".subsections_via_symbols\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "_a:\n\tcalll\tl_call_known\n\tjmp\tl_call_known                  ## TAILCALL\n"
            "\t.section\t__TEXT,__text,regular,pure_instructions\n\t.p2align\t4, 0x90\n"
            "l_call_known:\n\tcalll\tL_here_known\nL_here_known:\n\tpopl\t%eax\n"
            "\tmovl\tl_import_known-L_here_known(%eax), %eax\n\tjmpl\t*%eax\n"
            "\t.section\t__DATA,__pointers\n\t.p2align\t2\nl_import_known:\n\t.long\t_known\n"
            ".subsections_via_symbols\n");
}

TEST_F(IndirectImportsTest, MakesPointersToDataPlainAndNamed) {
  const Ending outcome = rewritten(
      "\tmovl\tL__b$non_lazy_ptr-L0$pb(%eax), %ecx\n"
      "\t.section\t__IMPORT,__pointers,non_lazy_symbol_pointers\n"
      "L__b$non_lazy_ptr:\n\t.indirect_symbol\t__b\n\t.long\t0\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "\tmovl\tlL__b$non_lazy_ptr-L0$pb(%eax), %ecx\n"
            "\t.section\t__DATA,__pointers\n\t.p2align\t2\n"
            "lL__b$non_lazy_ptr:\n\t.long\t__b\n");
}

TEST_F(IndirectImportsTest, RefusesPointersWithAValue) {
  const Ending outcome = rewritten("\t.indirect_symbol\t__b\n\t.long\t8\n");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, HasSubstr("a pointer without its zero: __b"));
}

TEST_F(IndirectImportsTest, RefusesHiddenSymbols) {
  const Ending outcome = rewritten("\t.private_extern\t__b\n");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, HasSubstr("a hidden symbol beside visible ones: __b"));
}

TEST_F(IndirectImportsTest, NeedsTheListOfImports) {
  std::filesystem::remove(folder_ / "imports.txt");
  const Ending outcome = rewritten("_a:\n");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, HasSubstr("can't read the list of imports"));
}

}  // namespace
}  // namespace tests
