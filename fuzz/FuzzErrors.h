#pragma once

#include "kernel/KErrorHandler.h"

#include <cstdint>
#include <cstdlib>

// Errors of a fuzz target: a reader's errors come back to it as codes, as
// they do inside the program; only a fatal error, which the program would
// end on, stops the run as a finding. Messages meant for a user stay quiet.
inline void fuzzForwardErrors()
{
    KErrorHandler::loadKernelErrors();
    KErrorHandler::setErrorMode(KErrorHandler::Forwarding);
    KErrorHandler::setErrorProc([](int32_t code, const char*) {
        if (KErrorHandler::severityOf(code) == KErrorHandler::Fatal)
            std::abort();
    });
    KErrorHandler::setMessageProc([](const char*, const char*, int32_t) {});
}

// A broken promise of a reader is a finding.
inline void fuzzCheck(bool condition)
{
    if (!condition)
        std::abort();
}
