#include "kernel/KErrorHandler.h"
#include "kernel/KKernelClasses.h"

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    // Tests find the source tree's data/ (the sample story) through this.
    setenv("TALELOOM_TEST_SOURCE_DIR", TALELOOM_SOURCE_DIR, 0);
    setenv("TALELOOM_AUDIO", "null", 0);
    // Death tests fork; "threadsafe" re-executes the program, which keeps
    // GLib's and GTK's threads out of the child.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    KErrorHandler::loadKernelErrors();
    kRegisterKernelClasses();
    return RUN_ALL_TESTS();
}
