// make-sample-story FOLDER: writes the sample story's project folder,
// FOLDER/Sample, with its document and its actor.

#include "app/AppClasses.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KKernelClasses.h"
#include "tools/make-sample-story/SampleStory.h"

#include <cstdio>
#include <filesystem>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-sample-story FOLDER\n");
        return 2;
    }
    KErrorHandler::loadKernelErrors();
    kRegisterKernelClasses();
    registerDocumentClasses();
    // Paths inside the program are absolute.
    std::error_code failure;
    std::filesystem::create_directories(argv[1], failure);
    std::filesystem::path folder = std::filesystem::absolute(argv[1], failure);
    std::string reason;
    if (failure) {
        std::fprintf(stderr, "make-sample-story: %s: %s\n", argv[1], failure.message().c_str());
        return 1;
    }
    if (!SampleStory::write(folder.lexically_normal().string(), reason)) {
        std::fprintf(stderr, "make-sample-story: %s\n", reason.c_str());
        return 1;
    }
    return 0;
}
