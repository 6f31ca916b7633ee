#pragma once

#include "kernel/KString.h"
#include "project/ProjectForward.h"
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// A story published as a folder that plays on its own: "data.TPD", the
// media it uses in "Media" under short safe names, the actors it uses in
// "Actors", the player as "Start Here!", its settings in "player.ini", the
// speech exceptions and a "Read Me.txt". The source project is never
// written to.
//
// Nothing is written before the checks pass (the name is free, the space
// is there), and a failure on the way removes what this run made.
struct PublishRequest {
    // The folder the publication goes in, and its name.
    std::string folder;
    KString name;
    bool includePlayer = true;
    // The player program copied as "Start Here!"; empty for the one beside
    // the running program.
    std::string playerPath;
    // What the player starts with.
    KString language;
    KString voice;
    double speechSpeed = -1.0;
    bool customSpeechSpeed = false;
    // The speech exceptions file copied beside the story; empty for none.
    std::string exceptionsPath;
};

struct PublishReport {
    bool published = false;
    // Why nothing stands: the one message the user sees.
    KString refusal;
    // The refusal is that the name is taken in the folder.
    bool nameTaken = false;
    std::string target;
    // Source path and the name it took in "Media".
    std::vector<std::pair<std::string, std::string>> copies;
    // Media the story names that were not found; their elements keep the
    // name and draw as missing.
    std::vector<std::string> missing;
    std::vector<std::string> actors;
    bool playerCopied = false;
    bool playerMissing = false;
    // The target's file system cannot start programs.
    bool cannotRunPrograms = false;
    int64_t bytes = 0;
};

using PublishProgress = std::function<void(int64_t done, int64_t total)>;

bool publishStory(StylusProject& source, const PublishRequest& request, PublishReport& report,
                  const PublishProgress& progress = {});

// The player beside the running program.
std::string playerBesideProgram();
// The messages a finished run leaves for the user, one per line; empty when
// all went as asked.
KString publishNotes(const PublishReport& report);
