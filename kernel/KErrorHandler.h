#pragma once

#include "kernel/KError.h"

#include "kernel/KSourceLocation.h"
#include <cstdint>

// The reporting path of every failure. There are no exceptions: a failure
// calls raiseError(code), and the compiler supplies the raising function's
// signature as the location, shown to the user as a caption. Severity 1 and 2
// show a message and return, so every raise site has its own fallback;
// severity 3 ends the process after the application's rescue offer.
class KErrorHandler {
public:
    enum class Mode : int32_t { Silent = 0, Internal = 1, Forwarding = 2 };
    using enum Mode;
    enum Severity : int32_t { None = 0, Notice = 1, Warning = 2, Fatal = 3 };

    // Message box flags of the native layer.
    static constexpr int32_t kNoticeBoxFlags = 0x52040;
    static constexpr int32_t kFatalBoxFlags = 0x52010;

    using ErrorProc = void (*)(int32_t code, const char* location);
    // The application's rescue hook; returns non-zero when the user has seen a message.
    using FatalProc = int32_t (*)(const char* location, const char* text);
    // Shows a message to the user; the native layer installs a window form.
    using MessageProc = void (*)(const char* text, const char* caption, int32_t flags);

    // The location shown is the calling function's signature, as the
    // compiler spells it. A helper that raises for its caller takes the
    // caller's location as a defaulted parameter of its own and passes it on.
    static void raiseError(int32_t code, const KSourceLocation& where = KSourceLocation::current());
    // Raises with a location that was not written here: one handed on by an
    // error procedure, or a compiler location with the name of the file or
    // class the failure concerns appended.
    static void raiseErrorAt(int32_t code, const char* location);
    // For sites that cannot return a value: ends the process even when the
    // mode would let the raise return.
    [[noreturn]] static void raiseUnrecoverable(int32_t code,
                                                const KSourceLocation& where = KSourceLocation::current());

    static int32_t getLastError();
    static void clearLastError();

    static void setErrorMode(Mode mode);
    static Mode getErrorMode();
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
    // Shows `text` as a notice captioned with the caller's signature, for a
    // missing or misused feature that has no error code.
    static void notice(const char* text, const KSourceLocation& where = KSourceLocation::current());
    // Ends the process through the fatal path with `text` and the caller's
    // signature, for a broken invariant that has no error code.
    [[noreturn]] static void fatal(const char* text, const KSourceLocation& where = KSourceLocation::current());
    // The exit status of a fatal end, EX_SOFTWARE unless set: scripts and
    // session managers must see that the program failed.
    static void setFatalExitCode(int code);
    static int fatalExitCode();
};

// The native end of a fatal error: runs the rescue hook once, shows the
// message, ends the process.
[[noreturn]] void knsFatalError(const char* location, const char* text);
