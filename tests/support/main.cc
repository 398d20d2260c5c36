// The main function of test programs whose fixtures bring everything back to its start.
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/apart.h"

static int runForked(int argc, char** argv, int (*body)(int argc, char** argv)) {
  const pid_t child = fork();
  if (child == 0) std::exit(body(argc, argv));
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return EXIT_FAILURE;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int main(int argc, char** argv) {
  return tests::runApart(argc, argv, tests::Share::suite, runForked);
}
