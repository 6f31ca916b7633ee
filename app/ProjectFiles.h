#pragma once

#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KString.h"
#include "project/ProjectForward.h"
#include "tape/TapeForward.h"

// The files around a project: its folder, its media and actor files, and
// the desktop's list of recent files.

// The folder where projects go by default.
KDirectory documentsFolder();

// Makes FOLDER/NAME with "NAME.TPD" named in `file` and the folders "Media"
// and "Actors" beside it. A folder that cannot be made is told in an alert
// with its path; false then.
bool makeProjectFolder(const KDirectory& folder, const KString& name, KFileReference& file);

// Copies the media and actor files the project's tape uses into the
// folders beside `newFile`, the project's new document.
void copyProjectFilesTo(StylusProject& project, const KFileReference& newFile);

// Copies the media and actor files of `read` that `readTape` uses into the
// folders of `into`. A media file whose name is taken there by another
// file is copied under a new name ("-2", "-3" ...) and the tape follows.
void copyProjectFiles(StylusProject& read, StylusProject& into, Tape& readTape);

// The text for a save that failed: the file error's own text ("Disk
// Full!" ...), or a general one.
KString saveErrorText(const StylusProject& project);

// Adds the file to the desktop's recent files.
void rememberRecentFile(const KFileReference& file);
