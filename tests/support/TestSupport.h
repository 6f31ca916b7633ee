#pragma once

#include "kernel/KErrorHandler.h"

#include <string>
#include <sysexits.h>
#include <vector>

// Records every raise while in scope, with the error mode set to forwarding,
// so a test can check which errors a call raised without ending the process.
class ErrorRecorder {
public:
    struct Raised {
        int32_t code;
        std::string location;
    };

    ErrorRecorder()
        : savedMode(KErrorHandler::getErrorMode())
    {
        raised().clear();
        KErrorHandler::setErrorMode(KErrorHandler::Forwarding);
        KErrorHandler::setErrorProc(&record);
    }
    ~ErrorRecorder()
    {
        KErrorHandler::clearErrorProc();
        KErrorHandler::setErrorMode(savedMode);
    }
    ErrorRecorder(const ErrorRecorder&) = delete;
    ErrorRecorder& operator=(const ErrorRecorder&) = delete;

    const std::vector<Raised>& errors() const { return raised(); }
    bool empty() const { return raised().empty(); }
    int32_t lastCode() const { return raised().empty() ? 0 : raised().back().code; }
    std::string lastLocation() const { return raised().empty() ? "" : raised().back().location; }

private:
    static std::vector<Raised>& raised()
    {
        static std::vector<Raised> list;
        return list;
    }
    static void record(int32_t code, const char* location) { raised().push_back({ code, location ? location : "" }); }

    KErrorHandler::Mode savedMode;
};

// Matches the message and the exit status of a fatal end in a death test.
#define EXPECT_FATAL(statement, text) EXPECT_EXIT(statement, ::testing::ExitedWithCode(EX_SOFTWARE), text)
