#pragma once

#include <string>

class StylusApplication;
class KJsonWriter;

// A description of the running program for tests and bug reports: with
// TALELOOM_STATE_FILE=PATH set, it is written to PATH as JSON when the
// program gets SIGUSR1 and when it ends, with PATH.png beside it showing
// the page as it stands. Without the variable nothing is written.
class StateFile {
public:
    StateFile();
    const std::string& getPath() const { return path; }
    void setPath(const std::string& value) { path = value; }
    // Watches for the signal.
    void install(StylusApplication& application);
    // False when there is no path or it could not be written.
    bool write(StylusApplication& application);
    // The JSON text alone.
    static std::string describe(StylusApplication& application);

private:
    static void onRequest(int signal);
    std::string path;
};
