#pragma once

#include "project/ProjectForward.h"

// What the program around a project wants to hear of it: the main window
// commits its editing before a save, the application shows the file's name,
// and the main window takes a freshly loaded tape. The project works without
// one, as the tools and tests have it.
class StylusProjectObserver {
public:
    StylusProjectObserver() = default;
    virtual ~StylusProjectObserver();
    StylusProjectObserver(const StylusProjectObserver&) = delete;
    StylusProjectObserver& operator=(const StylusProjectObserver&) = delete;

    // Before the tape is written: whatever is being edited goes into it.
    virtual void commitEditing(StylusProject& project);
    // The project now names another file.
    virtual void fileChanged(StylusProject& project);
    // A load gave the project a new tape.
    virtual void tapeLoaded(StylusProject& project);
};
