#include "kernel/KChildProcess.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace {

void closeDescriptor(int& fd)
{
    if (fd >= 0)
        ::close(fd);
    fd = -1;
}

// Reads what is there without waiting; false at the end of the stream.
bool readAvailable(int fd, std::string& into)
{
    char buffer[4096];
    for (;;) {
        ssize_t count = ::read(fd, buffer, sizeof buffer);
        if (count > 0) {
            into.append(buffer, size_t(count));
            continue;
        }
        if (count == 0)
            return false;
        return errno == EAGAIN || errno == EINTR;
    }
}

} // namespace

KChildProcess::~KChildProcess()
{
    if (child > 0)
        finish(0);
    closeDescriptor(output);
    closeDescriptor(errorOutput);
}

bool KChildProcess::start(const std::vector<std::string>& arguments, std::string& reason)
{
    if (arguments.empty() || child > 0) {
        reason = "nothing to start";
        return false;
    }
    int out[2];
    int err[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) {
        reason = std::strerror(errno);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    int failed = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(err[1]);
    output = out[0];
    errorOutput = err[0];
    if (failed != 0) {
        child = -1;
        closeDescriptor(output);
        closeDescriptor(errorOutput);
        reason = arguments[0] + ": " + std::strerror(failed);
        return false;
    }
    ::fcntl(output, F_SETFL, O_NONBLOCK);
    ::fcntl(errorOutput, F_SETFL, O_NONBLOCK);
    return true;
}

void KChildProcess::drainErrors()
{
    if (errorOutput >= 0 && !readAvailable(errorOutput, errors))
        closeDescriptor(errorOutput);
}

bool KChildProcess::readLines(std::vector<std::string>& lines, int timeoutMs)
{
    if (output < 0) {
        drainErrors();
        return false;
    }
    pollfd watched[2] = { { output, POLLIN, 0 }, { errorOutput, POLLIN, 0 } };
    ::poll(watched, errorOutput >= 0 ? 2 : 1, timeoutMs);
    bool open = readAvailable(output, pending);
    drainErrors();
    size_t end;
    while ((end = pending.find('\n')) != std::string::npos) {
        lines.push_back(pending.substr(0, end));
        pending.erase(0, end + 1);
    }
    if (!open)
        closeDescriptor(output);
    return open;
}

void KChildProcess::closeOutput() { closeDescriptor(output); }

int KChildProcess::finish(int timeoutMs)
{
    if (child <= 0)
        return -1;
    int status = 0;
    auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    pid_t ended = 0;
    while ((ended = ::waitpid(child, &status, WNOHANG)) == 0) {
        drainErrors();
        if (std::chrono::steady_clock::now() >= limit) {
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            ended = child;
            status = -1;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    child = -1;
    drainErrors();
    closeDescriptor(errorOutput);
    if (ended < 0 || status == -1 || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}
