#pragma once

#include "tools/taleloom-tool/TraceCommand.h"

#include <cstdint>
#include <vector>

class Tape;

// The pages of a story as a reader turns them: a page transition opens a
// new page, and a page shows what stood on it just before the next one
// (the book's pictures, at the same positions). Each page takes the stretch
// of a traced play from the end of the transition that opened it (the
// story's start for the first) to the start of the next, or to the end of
// the play.
struct StoryPage {
    // The elements [firstIndex, endPosition) drew the page.
    int32_t firstIndex = 0;
    int32_t endPosition = 0;
    int32_t beginMs = 0;
    int32_t endMs = 0;
    // The active text elements on the page, by index.
    std::vector<int32_t> texts;

    int32_t durationMs() const { return endMs > beginMs ? endMs - beginMs : 0; }
};

std::vector<StoryPage> storyPages(const Tape& tape, const TraceResult& trace);

// The word times of one text on a page: each lit word with its start and
// end in milliseconds of the page. A word ends where the next begins; the
// last one where the text took its mark away, or at the end of its reading.
struct PageWord {
    int32_t element = -1;
    int32_t wordStart = 0;
    int32_t wordLength = 0;
    int32_t beginMs = 0;
    int32_t endMs = 0;
};

std::vector<PageWord> pageWords(const StoryPage& page, const TraceResult& trace);
