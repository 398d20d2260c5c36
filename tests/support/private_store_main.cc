// GoogleTest's main function in a private store.
#include <gtest/gtest.h>

#include "host/store/private_store.h"

static int runTests(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, runTests); }
