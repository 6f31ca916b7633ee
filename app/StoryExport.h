#pragma once

#include "kernel/KString.h"

#include <string>
#include <vector>

// "Export as EPUB..." and "Export as Video..." of the File menu. The saved
// story goes to taleloom-tool's export commands, run beside the program:
// the export plays the story on a clock of its own, which must not be the
// program's, and a child that stops or fails leaves the program as it was.
// The progress window follows the child's reports; Cancel closes the pipe
// they come through, and the child stops and removes what it had begun.
class StoryExport {
public:
    enum class Kind { Epub, Video };

    // The whole command: saves the story if it must, asks for the file,
    // exports with the progress shown, then tells what happened.
    static void run(Kind kind);

    // taleloom-tool: $TALELOOM_TOOL, else beside this program, else where
    // the build tree puts it.
    static std::string toolPath();
    static std::vector<std::string> commandFor(Kind kind, const std::string& story, const std::string& target);

    struct Outcome {
        bool done = false;
        bool cancelled = false;
        // The child's last complaint when it failed.
        std::string failure;
        // What it left out.
        std::vector<std::string> warnings;
    };
    // Runs the command with a progress window titled `title`.
    static Outcome runWithProgress(const std::vector<std::string>& command, const KString& title);
};
