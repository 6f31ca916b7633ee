#pragma once

#include "kernel/KError.h"

#include <cstdint>

// The reporting path of every failure. There are no exceptions: a failure
// calls raiseError(code, location), where the location is the failing
// function's signature, shown to the user as a caption. Severity 1 and 2 show
// a message and return, so every raise site has its own fallback; severity 3
// ends the process after the application's rescue offer.
class KErrorHandler {
public:
    enum Mode : int32_t { Silent = 0, Internal = 1, Forwarding = 2 };
    enum Severity : int32_t { None = 0, Notice = 1, Warning = 2, Fatal = 3 };

    // Message box flags of the native layer.
    static constexpr int32_t kNoticeBoxFlags = 0x52040;
    static constexpr int32_t kFatalBoxFlags = 0x52010;

    using ErrorProc = void (*)(int32_t code, const char* location);
    // The application's rescue hook; returns non-zero when the user has seen a message.
    using FatalProc = int32_t (*)(const char* location, const char* text);
    // Shows a message to the user; the native layer installs a window form.
    using MessageProc = void (*)(const char* text, const char* caption, int32_t flags);

    static void raiseError(int32_t code, const char* location);
    // For sites that cannot return a value: ends the process even when the
    // mode would let the raise return.
    [[noreturn]] static void raiseUnrecoverable(int32_t code, const char* location);

    static int32_t getLastError();
    static void clearLastError();

    static void setErrorMode(int32_t mode);
    static int32_t getErrorMode();
    static void setErrorProc(ErrorProc proc);
    static ErrorProc getErrorProc();
    static void clearErrorProc();
    static void setErrorLanguage(int32_t language);

    static void addError(int32_t language, int32_t code, int32_t severity, const char* text);
    // Fills the kernel table (codes 0 to 105) and sets mode 1.
    static void loadKernelErrors();
    static void clearErrors();
    static bool isLoaded();

    // Text and severity of the record raiseError would use; the record of
    // code 1 when there is none.
    static const char* textOf(int32_t code);
    static int32_t severityOf(int32_t code);

    static int32_t mapNativeError(int32_t nativeError);
    // errno values of the file layer, mapped onto the same kernel codes.
    static int32_t mapErrno(int errnoValue);

    static void setFatalProc(FatalProc proc);
    static FatalProc getFatalProc();
    static void setMessageProc(MessageProc proc);
    static void showMessage(const char* text, const char* caption, int32_t flags);
    // The exit status of a fatal end. 0 as on the original platform; test
    // programs set their own so that an unexpected fatal error fails them.
    static void setFatalExitCode(int code);
    static int fatalExitCode();
};

// The native end of a fatal error: runs the rescue hook once, shows the
// message, ends the process.
[[noreturn]] void knsFatalError(const char* location, const char* text);
