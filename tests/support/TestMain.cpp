#include "tests/support/TestSupport.h"

#include "kernel/KErrorHandler.h"
#include "kernel/KKernelClasses.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    // Death tests fork; "threadsafe" re-executes the program, which keeps
    // GLib's and GTK's threads out of the child.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    KErrorHandler::setFatalExitCode(kTestFatalExitCode);
    KErrorHandler::loadKernelErrors();
    kRegisterKernelClasses();
    return RUN_ALL_TESTS();
}
