#include "kernel/KErrorHandler.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sysexits.h>
#include <vector>

namespace {

struct ErrorRecord {
    std::string text;
    int32_t language;
    int32_t code;
    int32_t severity;
};

struct ErrorState {
    std::vector<ErrorRecord> records; // insertion order
    int32_t lastError = 0;
    KErrorHandler::Mode mode = KErrorHandler::Silent;
    int32_t language = 0;
    KErrorHandler::ErrorProc errorProc = nullptr;
    KErrorHandler::FatalProc fatalProc = nullptr;
    KErrorHandler::MessageProc messageProc = nullptr;
    int exitCode = EX_SOFTWARE;
    bool inFatalPath = false;
};

ErrorState& state()
{
    static ErrorState s;
    return s;
}

// First record with this code in the current language, else the last record
// with this code, else null.
const ErrorRecord* findRecord(int32_t code)
{
    const ErrorRecord* fallback = nullptr;
    for (const auto& record : state().records) {
        if (record.code != code)
            continue;
        if (record.language == state().language)
            return &record;
        fallback = &record;
    }
    return fallback;
}

const ErrorRecord& recordOrUnknown(int32_t code)
{
    static const ErrorRecord unknown { "Unknown Fatal Error", 0, 1, KErrorHandler::Fatal };
    if (const ErrorRecord* record = findRecord(code))
        return *record;
    if (const ErrorRecord* record = findRecord(KError::UnknownFatalError))
        return *record;
    return unknown;
}

void stderrMessage(const char* text, const char* caption, int32_t)
{
    std::fprintf(stderr, "TaleLoom: %s: %s\n", caption ? caption : "", text ? text : "");
    std::fflush(stderr);
}

} // namespace

void KErrorHandler::raiseError(int32_t code, const KSourceLocation& where)
{
    raiseErrorAt(code, where.function_name());
}

void KErrorHandler::raiseErrorAt(int32_t code, const char* location)
{
    if (code == 0)
        return;
    ErrorState& s = state();
    s.lastError = code;
    switch (s.mode) {
    case Internal: {
        const ErrorRecord& record = recordOrUnknown(code);
        if (record.severity == Notice || record.severity == Warning) {
            showMessage(record.text.c_str(), location, kNoticeBoxFlags);
            return;
        }
        if (record.severity == Fatal)
            knsFatalError(location, record.text.c_str());
        return;
    }
    case Forwarding:
        if (s.errorProc)
            s.errorProc(code, location);
        return;
    default:
        return;
    }
}

void KErrorHandler::raiseUnrecoverable(int32_t code, const KSourceLocation& where)
{
    raiseErrorAt(code, where.function_name());
    knsFatalError(where.function_name(), recordOrUnknown(code).text.c_str());
}

int32_t KErrorHandler::getLastError() { return state().lastError; }
void KErrorHandler::clearLastError() { state().lastError = 0; }
void KErrorHandler::setErrorMode(Mode mode) { state().mode = mode; }
KErrorHandler::Mode KErrorHandler::getErrorMode() { return state().mode; }
void KErrorHandler::setErrorProc(ErrorProc proc) { state().errorProc = proc; }
KErrorHandler::ErrorProc KErrorHandler::getErrorProc() { return state().errorProc; }
void KErrorHandler::clearErrorProc() { state().errorProc = nullptr; }
void KErrorHandler::setErrorLanguage(int32_t language) { state().language = language; }

void KErrorHandler::addError(int32_t language, int32_t code, int32_t severity, const char* text)
{
    state().records.push_back({ text ? text : "", language, code, severity });
}

void KErrorHandler::clearErrors()
{
    state().records.clear();
    state().mode = Silent;
}

bool KErrorHandler::isLoaded() { return !state().records.empty(); }

const char* KErrorHandler::textOf(int32_t code) { return recordOrUnknown(code).text.c_str(); }
int32_t KErrorHandler::severityOf(int32_t code) { return recordOrUnknown(code).severity; }

int32_t KErrorHandler::mapNativeError(int32_t nativeError)
{
    switch (nativeError) {
    case 0:
        return KError::NoError;
    case 2:
    case 3:
    case 55:
    case 267:
        return KError::FileNotFound;
    case 29:
        return KError::CouldNotWriteFile;
    case 30:
        return KError::CouldNotReadFile;
    case 38:
        return KError::EndOfFile;
    case 39:
    case 112:
        return KError::DiskFull;
    case 110:
        return KError::CouldNotOpenFile;
    default:
        return KError::UnknownFileError;
    }
}

int32_t KErrorHandler::mapErrno(int errnoValue)
{
    switch (errnoValue) {
    case 0:
        return KError::NoError;
    case ENOENT:
    case ENOTDIR:
        return KError::FileNotFound;
    case ENOSPC:
    case EDQUOT:
        return KError::DiskFull;
    case EMFILE:
        return KError::CouldNotOpenFile;
    default:
        return KError::UnknownFileError;
    }
}

void KErrorHandler::setFatalProc(FatalProc proc) { state().fatalProc = proc; }
KErrorHandler::FatalProc KErrorHandler::getFatalProc() { return state().fatalProc; }
void KErrorHandler::setMessageProc(MessageProc proc) { state().messageProc = proc; }

void KErrorHandler::showMessage(const char* text, const char* caption, int32_t flags)
{
    MessageProc proc = state().messageProc ? state().messageProc : stderrMessage;
    proc(text, caption, flags);
}

void KErrorHandler::notice(const char* text, const KSourceLocation& where)
{
    showMessage(text, where.function_name(), kNoticeBoxFlags);
}

void KErrorHandler::fatal(const char* text, const KSourceLocation& where)
{
    knsFatalError(where.function_name(), text);
}

void KErrorHandler::setFatalExitCode(int code) { state().exitCode = code; }
int KErrorHandler::fatalExitCode() { return state().exitCode; }

void knsFatalError(const char* location, const char* text)
{
    ErrorState& s = state();
    bool shown = false;
    if (!s.inFatalPath) {
        s.inFatalPath = true;
        if (s.fatalProc)
            shown = s.fatalProc(location, text) != 0;
    }
    if (!shown)
        KErrorHandler::showMessage(text, location, KErrorHandler::kFatalBoxFlags);
    // Show the message on stderr too when a window took it: the terminal
    // keeps a record after the process is gone.
    if (s.messageProc && s.messageProc != stderrMessage)
        stderrMessage(text, location, 0);
    std::fflush(stdout);
    std::fflush(stderr);
    std::_Exit(s.exitCode);
}
