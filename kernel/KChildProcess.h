#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

// Another program run beside this one, for long work that must not hold
// the event loop: what it prints on its standard output comes back line by
// line as it is printed, its standard error is kept for the end. Closing
// the output asks a program that reports its progress there to stop: its
// next report fails, and it cleans up after itself.
class KChildProcess {
public:
    KChildProcess() = default;
    ~KChildProcess();
    KChildProcess(const KChildProcess&) = delete;
    KChildProcess& operator=(const KChildProcess&) = delete;

    // Starts `arguments[0]` (a path) with the arguments; false with a
    // one-line reason when it cannot be started.
    bool start(const std::vector<std::string>& arguments, std::string& reason);
    // Waits up to `timeoutMs` for output and moves the complete lines
    // printed since into `lines`. False once the program has closed its
    // output and everything has been read.
    bool readLines(std::vector<std::string>& lines, int timeoutMs);
    // Stops listening: the program's next line meets a closed pipe.
    void closeOutput();
    // Waits for the end, at most `timeoutMs`, then kills the program; its
    // exit status, or -1 when it was killed or ended by a signal.
    int finish(int timeoutMs);
    const std::string& getErrors() const { return errors; }

private:
    void drainErrors();

    pid_t child = -1;
    int output = -1;
    int errorOutput = -1;
    std::string pending;
    std::string errors;
};
