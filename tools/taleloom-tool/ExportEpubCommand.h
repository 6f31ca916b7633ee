#pragma once

#include "project/ProjectForward.h"
#include "tools/taleloom-tool/StoryPages.h"
#include "tools/taleloom-tool/ToolCommand.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// taleloom-tool export-epub STORY.TPD -o BOOK.epub [--progress]
//
// Makes the story an EPUB 3 book of fixed pages whose words light up as
// they are read: each page of the story becomes a page of the book with
// its picture (the texts left out), its texts as real words in the same
// places and letters, and a media overlay that pairs each word with its
// stretch of the page's sound (the voice or the recording, the story's
// sounds, its pauses as silence). The story plays for it without a display
// and without sound on a clock moved by hand; a wait for the user is
// answered at once, so that the reader turns the page there. With
// --progress a line "progress DONE TOTAL" follows each page.
ToolCommand exportEpubCommand();

struct EpubExportReport {
    int32_t pages = 0;
    // Pages with sound, and the length of all of it.
    int32_t overlays = 0;
    int32_t durationMs = 0;
    // Each page's words with their times in the page.
    std::vector<std::vector<PageWord>> words;
};

// Told after each page; answers false to stop the export.
using ExportProgress = std::function<bool(int32_t done, int32_t total)>;

// Exports the story at `story` to `target`. Written under a temporary name
// first and renamed at the end: a failure or a stop leaves no file there.
// False with a one-line reason; what was left out goes into `warnings`.
bool exportEpub(const std::string& story, const std::string& target, EpubExportReport& report, std::string& reason,
                std::vector<std::string>& warnings, const ExportProgress& progress = {});

// Names each medium the story uses that is not in its folder: its element
// passes without being seen or heard.
void warnMissingMedia(StylusProject& project, const std::string& story, std::vector<std::string>& warnings);

// The language of the book: the interface's, as the environment gives it
// ("fr" for fr_FR.UTF-8), "en" when it gives none.
std::string epubLanguage();
