// What the program costs a core while nobody touches it: the real taleloom
// on an X server of its own (Xvfb), the sample story open, sound going
// nowhere. Two states, each measured over five seconds of wall time once
// the start has settled:
//
// - editing with nothing moving: the page shown, the brush resting; the
//   bound is 1% of a core;
// - paused: played with Control+G, paused with P, the pause marker
//   blinking; the bound is 3%.
//
// Counters edit_cpu_percent and paused_cpu_percent are the program's CPU
// time (all its threads) over wall time; x_*_percent is what the X server
// spent meanwhile, for the curious (drawing on a real display costs more).

#include <benchmark/benchmark.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace fs = std::filesystem;

namespace {

using namespace std::chrono_literals;

constexpr auto kMeasureTime = 5s;

pid_t spawn(const std::vector<std::string>& arguments, posix_spawn_file_actions_t* actions = nullptr)
{
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawnp(&pid, argv[0], actions, nullptr, argv.data(), environ) != 0)
        return -1;
    return pid;
}

void stop(pid_t pid)
{
    if (pid <= 0)
        return;
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
}

// CPU time of every thread of the process, in seconds.
double processCpuSeconds(pid_t pid)
{
    double total = 0;
    std::error_code error;
    for (const fs::directory_entry& task : fs::directory_iterator("/proc/" + std::to_string(pid) + "/task", error)) {
        std::ifstream in(task.path() / "schedstat");
        unsigned long long runNs = 0;
        if (in >> runNs)
            total += double(runNs) / 1e9;
    }
    return total;
}

// A command's success, its output thrown away.
bool run(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

// An X server on a free display; its number comes back through a pipe.
struct XServer {
    pid_t pid = -1;
    std::string display;

    bool start()
    {
        int channel[2];
        if (pipe(channel) != 0)
            return false;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addclose(&actions, channel[0]);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        pid = spawn(
            { "Xvfb", "-displayfd", std::to_string(channel[1]), "-screen", "0", "1280x1024x24", "-nolisten", "tcp" },
            &actions);
        posix_spawn_file_actions_destroy(&actions);
        close(channel[1]);
        char buffer[32] = {};
        ssize_t got = pid > 0 ? read(channel[0], buffer, sizeof buffer - 1) : -1;
        close(channel[0]);
        if (got <= 0)
            return false;
        display = ":" + std::to_string(std::atoi(buffer));
        return true;
    }
    ~XServer() { stop(pid); }
};

// The program with settings, documents and the sample in a folder of its
// own, asked for its state through the state file.
struct Program {
    fs::path root = fs::temp_directory_path() / ("taleloom-idle-" + std::to_string(::getpid()));
    pid_t pid = -1;

    bool start()
    {
        fs::create_directories(root / "home");
        fs::copy(fs::path(TALELOOM_SOURCE_DIR) / "data/samples/Sample", root / "Sample", fs::copy_options::recursive);
        setenv("HOME", (root / "home").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
        setenv("XDG_DATA_HOME", (root / "data").c_str(), 1);
        setenv("TALELOOM_AUDIO", "null", 1);
        setenv("NO_AT_BRIDGE", "1", 1);
        setenv("TALELOOM_STATE_FILE", statePath().c_str(), 1);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        pid = spawn({ TALELOOM_PROGRAM, (root / "Sample" / "Sample.TPD").string() }, &actions);
        posix_spawn_file_actions_destroy(&actions);
        return pid > 0 && run("timeout 30 xdotool search --sync --onlyvisible --name 'Sample - TaleLoom'");
    }
    ~Program()
    {
        stop(pid);
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }
    std::string statePath() const { return (root / "state.json").string(); }

    // Whether the state file, written anew on request, says the window
    // mode is `mode`.
    bool isInWindowMode(int mode)
    {
        fs::remove(statePath());
        kill(pid, SIGUSR1);
        for (int i = 0; i < 50; ++i) {
            std::this_thread::sleep_for(100ms);
            std::ifstream in(statePath());
            std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            if (text.find("\"windowMode\": " + std::to_string(mode) + ",") != std::string::npos)
                return true;
        }
        return false;
    }
};

struct Usage {
    double program = 0;
    double server = 0;
};

Usage measure(pid_t program, pid_t server)
{
    double programBefore = processCpuSeconds(program);
    double serverBefore = processCpuSeconds(server);
    auto start = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(kMeasureTime);
    std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    return { 100.0 * (processCpuSeconds(program) - programBefore) / wall.count(),
             100.0 * (processCpuSeconds(server) - serverBefore) / wall.count() };
}

void BM_IdleProgram(benchmark::State& state)
{
    XServer server;
    if (!server.start()) {
        state.SkipWithError("Xvfb could not be started");
        return;
    }
    setenv("DISPLAY", server.display.c_str(), 1);
    Program program;
    if (!program.start()) {
        state.SkipWithError("the main window never came up");
        return;
    }
    Usage editing;
    Usage paused;
    for (auto _ : state) {
        // The splash, the first thumbnails and the settling of the windows.
        std::this_thread::sleep_for(6s);
        editing = measure(program.pid, server.pid);

        run("xdotool search --onlyvisible --name 'Sample - TaleLoom' windowfocus --sync");
        std::this_thread::sleep_for(300ms);
        run("xdotool key ctrl+g");
        std::this_thread::sleep_for(1500ms);
        run("xdotool key p");
        if (!program.isInWindowMode(4)) {
            state.SkipWithError("the play could not be paused");
            return;
        }
        std::this_thread::sleep_for(1s);
        paused = measure(program.pid, server.pid);
    }
    state.counters["edit_cpu_percent"] = editing.program;
    state.counters["paused_cpu_percent"] = paused.program;
    state.counters["x_edit_percent"] = editing.server;
    state.counters["x_paused_percent"] = paused.server;
}

} // namespace

BENCHMARK(BM_IdleProgram)->Iterations(1)->Unit(benchmark::kSecond);
