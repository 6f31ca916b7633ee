#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// taleloom-tool export-video STORY.TPD -o STORY.mp4 [--size WxH] [--fps N] [--webm] [--wait-ms MS] [--progress]
//
// Makes the story a video file that plays everywhere: the story plays on a
// clock moved frame by frame rather than by the wall, so the export is the
// same every time and faster than the story; each frame is the page as the
// player shows it at that time, with the lit words, and the sound is the
// story's voices, recordings and sounds mixed at their places. A wait for
// the user lasts --wait-ms (2000 by default). H.264 and AAC in MP4, or with
// --webm VP9 and Opus in WebM. With --progress, lines "progress MS TOTAL"
// tell the story time reached.
ToolCommand exportVideoCommand();

struct VideoExportOptions {
    // 0 for the story's page size; odd sides are made even.
    int32_t width = 0;
    int32_t height = 0;
    int32_t framesPerSecond = 25;
    bool webm = false;
    int32_t waitMs = 2000;
};

struct VideoExportReport {
    int64_t frames = 0;
    // The story time the play ended at.
    int32_t playMs = 0;
    int32_t width = 0;
    int32_t height = 0;
};

// Told with the story time reached; answers false to stop the export.
using VideoProgress = std::function<bool(int32_t storyMs)>;

// Exports the story at `story` to `target`, written under a temporary name
// and renamed at the end: a failure or a stop leaves no file there. False
// with a one-line reason; what was left out goes into `warnings`.
bool exportVideo(const std::string& story, const std::string& target, const VideoExportOptions& options,
                 VideoExportReport& report, std::string& reason, std::vector<std::string>& warnings,
                 const VideoProgress& progress = {});
