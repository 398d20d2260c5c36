// The main function of test programs over the real Foundation, which keeps much for the length of a
// process: every test has one, and a store, of its own.
#include "host/store/private_store.h"
#include "tests/support/apart.h"

int main(int argc, char** argv) {
  return tests::runApart(argc, argv, tests::Share::nothing, host::runInPrivateStore);
}
