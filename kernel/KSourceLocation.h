#pragma once

// Where a call was written, filled in by the compiler as a default argument.
// The standard library's source_location needs a compiler builtin that clang
// 14 (the fuzzing and analysis compiler here) lacks; there the same interface
// is built from the older builtins, which name the function without its
// parameters.
#include <version>

#if defined(__cpp_lib_source_location)
#include <source_location>
using KSourceLocation = std::source_location;
#else
#include <cstdint>

struct KSourceLocation {
    static constexpr KSourceLocation current(const char* file = __builtin_FILE(),
                                             const char* function = __builtin_FUNCTION(),
                                             uint_least32_t line = __builtin_LINE(),
                                             uint_least32_t column = __builtin_COLUMN()) noexcept
    {
        KSourceLocation here;
        here.fileName = file;
        here.functionName = function;
        here.lineNumber = line;
        here.columnNumber = column;
        return here;
    }
    constexpr KSourceLocation() noexcept = default;
    constexpr uint_least32_t line() const noexcept { return lineNumber; }
    constexpr uint_least32_t column() const noexcept { return columnNumber; }
    constexpr const char* file_name() const noexcept { return fileName; }
    constexpr const char* function_name() const noexcept { return functionName; }

private:
    const char* fileName = "";
    const char* functionName = "";
    uint_least32_t lineNumber = 0;
    uint_least32_t columnNumber = 0;
};
#endif
