#pragma once

#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"

#include <cstdint>
#include <string>
#include <vector>

class StylusApplication;
class StylusProject;

// Never lose a child's work: while the story has unsaved changes, a copy
// is written every two minutes (and at once when the session ends the
// program) into the user's data folder, "TaleLoom/Recovery". The copy
// never replaces the user's own document. At the next start a copy newer
// than its document is offered back; a clean save or quit removes it.
//
// Each copy is NAME-NUMBER.TPD with a text file NAME-NUMBER.source beside
// it that holds the path of the project it belongs to (empty for an
// untitled story).
class RecoveryCopy {
public:
    static constexpr int32_t kInterval = 120000;

    struct Found {
        KFileReference copy;
        // Empty for an untitled story.
        std::string source;
        KString name;
    };

    RecoveryCopy();
    ~RecoveryCopy();
    RecoveryCopy(const RecoveryCopy&) = delete;
    RecoveryCopy& operator=(const RecoveryCopy&) = delete;

    // The folder of the copies; tests point it elsewhere.
    static KDirectory defaultFolder();
    void setFolder(const KDirectory& folder) { this->folder = folder; }
    const KDirectory& getFolder() const { return folder; }

    // The two-minute timer and the session's end.
    void start(StylusApplication& application);
    // Writes the copy of the project now when it has changes, removes it
    // when it has none. True when a copy stands afterwards.
    bool update(StylusProject& project);
    // The project's copy, written or not.
    KFileReference copyFor(const StylusProject& project) const;
    // A project was opened from `file`: its copy becomes the one kept.
    void projectOpened(const KFileReference& file);
    // The program ends: a quit the user agreed to removes the copy; an
    // end forced by the session keeps it.
    void finish(bool keep);
    // Copies that are newer than their documents (or whose document is
    // gone, or was never saved).
    std::vector<Found> findOffers() const;
    // Opens a found copy as the project it belongs to, marked changed.
    static bool reopen(const Found& found, StylusProject& into);
    static void discard(const Found& found);

private:
    class Ticker;
    std::string keyFor(const StylusProject& project) const;
    static void onSessionEnd(int signal);

    KDirectory folder;
    KThingPtr ticker;
    std::string untitledKey;
    std::string currentKey;
};
