#include "tools/taleloom-tool/ExportVideoCommand.h"

#include "app/SceneTapePage.h"
#include "graphics/KImage.h"
#include "graphics/KPixelBuffer.h"
#include "kmultimedia/KVideoEncoder.h"
#include "project/StylusProject.h"
#include "tools/taleloom-tool/AudioTimeline.h"
#include "tools/taleloom-tool/ExportEpubCommand.h"
#include "tools/taleloom-tool/ExportFiles.h"
#include "tools/taleloom-tool/ExportProgress.h"
#include "tools/taleloom-tool/ToolProject.h"
#include "tools/taleloom-tool/TraceCommand.h"
#include "tools/taleloom-tool/TraceMedia.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <ostream>

namespace fs = std::filesystem;

namespace {

constexpr int32_t kLargestSide = 4096;
constexpr int32_t kMostFramesPerSecond = 120;

// The frames and the sound of the play, handed to the encoder as the play
// reaches them: a frame shows the page after the last tick at or before
// its time; the sound up to a tick is complete once the tick is over,
// since every sound heard by then has been logged.
class VideoRecorder final : public TraceObserver {
public:
    VideoRecorder(KVideoEncoder& encoder, const VideoExportOptions& options, const TraceAudioLog& log,
                  const VideoProgress& progress, std::vector<std::string>& failed)
        : encoder(encoder)
        , options(options)
        , log(log)
        , progress(progress)
        , failed(failed)
        , audio({})
    {
    }

    bool ticked(Tape&, SceneTapePage& page, int32_t nowMs) override
    {
        if (!ensureOpen(page))
            return false;
        bool composed = false;
        while (frameTimeMs(nextFrame) <= nowMs) {
            if (!composed && !compose(page))
                return false;
            composed = true;
            if (!addFrame())
                return false;
        }
        if (!addSound(nowMs))
            return false;
        stopped = progress && !progress(nowMs);
        return !stopped;
    }

    bool isOpen() const { return opened; }
    bool wasStopped() const { return stopped; }
    int64_t getFrames() const { return nextFrame; }
    const KGraphicSize& getSize() const { return size; }
    const std::string& getFailure() const { return failure; }

    std::string target;

private:
    int64_t frameTimeMs(int64_t frame) const { return frame * 1000 / options.framesPerSecond; }

    bool ensureOpen(SceneTapePage& page)
    {
        if (opened)
            return true;
        KGraphicSize pageSize = page.getPageSize();
        int32_t width = options.width > 0 ? options.width : pageSize.width;
        int32_t height = options.height > 0 ? options.height : pageSize.height;
        // The encoders take even sides only.
        size = KGraphicSize(int16_t(std::max(2, width & ~1)), int16_t(std::max(2, height & ~1)));
        KVideoEncoder::Settings settings;
        settings.container = options.webm ? KVideoEncoder::Container::WebM : KVideoEncoder::Container::Mp4;
        settings.width = size.width;
        settings.height = size.height;
        settings.framesPerSecond = options.framesPerSecond;
        opened = encoder.open(target, settings, failure);
        frame = new KImage(size);
        return opened;
    }

    bool compose(SceneTapePage& page)
    {
        KImagePtr whole(new KImage());
        page.composeInto(*whole);
        if (!whole->hasImage() || !frame->hasImage()) {
            failure = "the page cannot be drawn";
            return false;
        }
        if (whole->getSize().width == size.width && whole->getSize().height == size.height)
            frame = whole;
        else
            whole->drawIn(frame->getDevice(), frame->getBounds());
        return true;
    }

    bool addFrame()
    {
        KPixelBuffer pixels;
        if (!frame->getDevice().beginPixelAccess(pixels)) {
            failure = "the page cannot be read";
            return false;
        }
        bool added = encoder.addFrame(pixels.data, pixels.stride, nextFrame);
        frame->getDevice().endPixelAccess(KWideRectangle());
        if (!added)
            failure = "the video encoder stopped";
        ++nextFrame;
        return added;
    }

    bool addSound(int32_t nowMs)
    {
        if (nowMs <= soundMs)
            return true;
        audio.setClips(log.getClips());
        KAudioBuffer sound = audio.mix(soundMs, nowMs, failed);
        soundMs = nowMs;
        if (encoder.addSound(sound.samples.data(), sound.frames()))
            return true;
        failure = "the sound encoder stopped";
        return false;
    }

    KVideoEncoder& encoder;
    const VideoExportOptions& options;
    const TraceAudioLog& log;
    const VideoProgress& progress;
    std::vector<std::string>& failed;
    AudioTimeline audio;
    KImagePtr frame;
    KGraphicSize size;
    bool opened = false;
    bool stopped = false;
    int64_t nextFrame = 0;
    int32_t soundMs = 0;
    std::string failure;
};

bool parseNumber(const std::string& text, int32_t largest, int32_t& value)
{
    if (text.empty() || text.size() > 9
        || !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); }))
        return false;
    long number = std::stol(text);
    if (number > largest)
        return false;
    value = int32_t(number);
    return true;
}

bool parseSize(const std::string& text, VideoExportOptions& options)
{
    size_t x = text.find('x');
    return x != std::string::npos && parseNumber(text.substr(0, x), kLargestSide, options.width)
           && parseNumber(text.substr(x + 1), kLargestSide, options.height) && options.width >= 2
           && options.height >= 2;
}

struct VideoRequest {
    std::string story;
    std::string output;
    VideoExportOptions options;
    bool progress = false;
};

bool parseOption(const std::vector<std::string>& arguments, size_t& i, VideoRequest& request)
{
    const std::string& argument = arguments[i];
    bool hasValue = i + 1 < arguments.size();
    if (argument == "--webm" || argument == "--progress") {
        (argument == "--webm" ? request.options.webm : request.progress) = true;
        return true;
    }
    if (!hasValue)
        return false;
    const std::string& value = arguments[++i];
    if (argument == "-o" && request.output.empty()) {
        request.output = value;
        return true;
    }
    if (argument == "--size")
        return parseSize(value, request.options);
    if (argument == "--fps")
        return parseNumber(value, kMostFramesPerSecond, request.options.framesPerSecond)
               && request.options.framesPerSecond > 0;
    if (argument == "--wait-ms")
        return parseNumber(value, 3600000, request.options.waitMs);
    return false;
}

bool parseRequest(const std::vector<std::string>& arguments, VideoRequest& request)
{
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (!argument.empty() && argument[0] == '-') {
            if (!parseOption(arguments, i, request))
                return false;
        } else if (request.story.empty()) {
            request.story = argument;
        } else {
            return false;
        }
    }
    return !request.story.empty() && !request.output.empty();
}

// How long the story plays, waits held as the export holds them: a play
// without pictures, which takes a fraction of the export's time.
int32_t playLength(const std::string& story, const VideoExportOptions& options)
{
    TraceOptions trace;
    trace.answerWaitsAfterMs = options.waitMs;
    trace.withoutPictures = true;
    TraceResult result;
    std::string reason;
    std::vector<std::string> warnings;
    return traceStory(story, trace, result, reason, warnings) ? result.endMs : 0;
}

int runExportVideo(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    VideoRequest request;
    if (!parseRequest(arguments, request))
        return toolUsageError(exportVideoCommand(), err);
    VideoExportReport report;
    std::string reason;
    std::vector<std::string> warnings;
    ExportProgressLines lines(out);
    VideoProgress progress;
    int32_t total = request.progress ? playLength(request.story, request.options) : 0;
    if (request.progress)
        progress = [&lines, total](int32_t storyMs) { return lines.report(storyMs, total); };
    bool done = exportVideo(request.story, request.output, request.options, report, reason, warnings, progress);
    for (const std::string& warning : warnings)
        err << "taleloom-tool: warning: " << warning << '\n';
    if (!done)
        return toolInputError(reason, err);
    out << request.output << ": " << report.width << "x" << report.height << ", " << report.frames << " frames, "
        << report.playMs << " ms of story\n";
    return kToolSucceeded;
}

} // namespace

ToolCommand exportVideoCommand()
{
    return { "export-video", "STORY.TPD -o STORY.mp4 [--size WxH] [--fps N] [--webm] [--wait-ms MS] [--progress]",
             &runExportVideo };
}

bool exportVideo(const std::string& story, const std::string& target, const VideoExportOptions& options,
                 VideoExportReport& report, std::string& reason, std::vector<std::string>& warnings,
                 const VideoProgress& progress)
{
    report = VideoExportReport();
    if (!exportTargetUsable(target, reason))
        return false;
    StylusProjectPtr project(new StylusProject());
    std::vector<std::string> ignored;
    if (!loadToolProject(story, *project, reason, ignored))
        return false;
    warnMissingMedia(*project, story, warnings);
    ExportFolder heard("taleloom-video");
    TraceAudioLog log(heard.path);
    std::unique_ptr<KVideoEncoder> encoder = knsCreateVideoEncoder();
    std::vector<std::string> undecodable;
    VideoRecorder recorder(*encoder, options, log, progress, undecodable);
    recorder.target = target + ".part";
    TraceOptions trace;
    trace.answerWaitsAfterMs = options.waitMs;
    trace.audioLog = &log;
    trace.observer = &recorder;
    TraceResult result;
    bool played = traceStory(story, trace, result, reason, warnings);
    for (const std::string& line : undecodable)
        warnings.push_back(line + ": its sound is left out");
    std::string finishing;
    bool finished = recorder.isOpen() && encoder->finish(finishing);
    std::error_code failed;
    if (!played || recorder.wasStopped() || !recorder.getFailure().empty() || !finished) {
        fs::remove(recorder.target, failed);
        if (recorder.wasStopped())
            reason = "stopped";
        else if (played)
            reason = target
                     + ": cannot be written: " + (!recorder.getFailure().empty() ? recorder.getFailure() : finishing);
        return false;
    }
    fs::rename(recorder.target, target, failed);
    if (failed) {
        fs::remove(recorder.target, failed);
        reason = target + ": cannot be written";
        return false;
    }
    report.frames = recorder.getFrames();
    report.playMs = result.endMs;
    report.width = recorder.getSize().width;
    report.height = recorder.getSize().height;
    return true;
}
