#include "tools/taleloom-tool/TraceMedia.h"

#include "kmultimedia/KSoundSupport.h"
#include "kmultimedia/KWavFormat.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace {

TraceAudioLog* gAudioLog = nullptr;

double secondsSince(uint32_t start) { return double(std::max(0, kTimeDifference(knsGetTime(), start))) / 1000.0; }

// The length of a WAV file in milliseconds; 0 when it is none.
int32_t wavLengthMs(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> head(4096);
    in.read(reinterpret_cast<char*>(head.data()), std::streamsize(head.size()));
    head.resize(size_t(in.gcount()));
    KWavInfo info;
    if (!kReadWavHeader(head.data(), head.size(), info) || info.format.bytesPerSecond() <= 0)
        return 0;
    std::error_code ignored;
    uintmax_t size = std::filesystem::file_size(path, ignored);
    uintmax_t data = size > info.dataOffset ? size - info.dataOffset : 0;
    if (info.dataBytes != 0)
        data = std::min<uintmax_t>(data, info.dataBytes);
    return int32_t(data * 1000 / uintmax_t(info.format.bytesPerSecond()));
}

// A speech made at once into a file by the real engine, then played by
// the clock: its words are told as the clock reaches them.
class TraceSpeech final : public KSpeechNative {
public:
    TraceSpeech(KSpeechNative* real, std::string path)
        : real(real)
        , path(std::move(path))
    {
    }
    ~TraceSpeech() override
    {
        closeClip();
        std::remove(path.c_str());
    }

    bool open(const char*) override { return real && real->open(path.c_str()); }
    bool speak(const KSpeechRequest& request) override
    {
        cancel();
        if (!real->speak(request))
            return false;
        using Clock = std::chrono::steady_clock;
        Clock::time_point limit = Clock::now() + std::chrono::milliseconds(TraceSpeechEngine::kMakingLimitMs);
        while (!real->isDone() && Clock::now() < limit) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            real->update();
            real->takeWords(words);
        }
        real->takeWords(words);
        lengthMs = wavLengthMs(path);
        if (!words.empty())
            lengthMs = std::max(lengthMs, words.back().audioMs);
        startedAt = knsGetTime();
        heardMs = 0;
        speaking = true;
        paused = false;
        if (TraceAudioLog* log = TraceAudioLog::current())
            keptPath = log->keep(path);
        openClip();
        return true;
    }
    void pause() override
    {
        if (!speaking || paused)
            return;
        heardMs = positionMs();
        paused = true;
        closeClip();
    }
    void resume() override
    {
        if (!speaking || !paused)
            return;
        startedAt = knsGetTime();
        paused = false;
        openClip();
    }
    void cancel() override
    {
        closeClip();
        speaking = false;
        words.clear();
    }
    void setVolume(double value) override
    {
        if (value == volume)
            return;
        volume = value;
        if (clip >= 0) {
            closeClip();
            openClip();
        }
    }
    int32_t positionMs() const override
    {
        if (!speaking)
            return 0;
        if (paused)
            return heardMs;
        return std::min(lengthMs, heardMs + std::max(0, kTimeDifference(knsGetTime(), startedAt)));
    }
    void takeWords(std::vector<KSpeechRawWord>& out) override
    {
        out.insert(out.end(), words.begin(), words.end());
        words.clear();
    }
    void update() override { }
    bool isDone() const override { return !speaking || positionMs() >= lengthMs; }

private:
    void openClip()
    {
        TraceAudioLog* log = TraceAudioLog::current();
        if (log && !keptPath.empty() && clip < 0)
            clip = log->start(keptPath, positionMs(), volume, 0.0);
    }
    void closeClip()
    {
        if (TraceAudioLog* log = TraceAudioLog::current(); log && clip >= 0)
            log->stop(clip);
        clip = -1;
    }

    std::unique_ptr<KSpeechNative> real;
    std::string path;
    std::string keptPath;
    double volume = 1.0;
    int32_t clip = -1;
    std::vector<KSpeechRawWord> words;
    int32_t lengthMs = 0;
    int32_t heardMs = 0;
    uint32_t startedAt = 0;
    bool speaking = false;
    bool paused = false;
};

} // namespace

// --- Sounds ------------------------------------------------------------------------

bool TraceSoundPlayer::open(const char* path, const char*)
{
    std::unique_ptr<KSoundNative> real(knsCreateSound());
    if (!real) {
        reason = "no sound player";
        return false;
    }
    if (!real->open(path, nullptr)) {
        reason = real->failure();
        return false;
    }
    length = std::max(0.0, real->duration());
    offset = 0.0;
    closeClip();
    playing = false;
    this->path = path;
    return true;
}

void TraceSoundPlayer::start()
{
    if (playing)
        return;
    startedAt = knsGetTime();
    playing = true;
    openClip();
}

void TraceSoundPlayer::pause()
{
    if (!playing)
        return;
    offset = position();
    playing = false;
    closeClip();
}

void TraceSoundPlayer::seek(double seconds)
{
    closeClip();
    offset = std::clamp(seconds, 0.0, length);
    startedAt = knsGetTime();
    if (playing)
        openClip();
}

void TraceSoundPlayer::setVolume(double value)
{
    if (value != volume) {
        volume = value;
        restartClip();
    }
}

void TraceSoundPlayer::setBalance(double value)
{
    if (value != balance) {
        balance = value;
        restartClip();
    }
}

// A change of level goes on from where the sound is, as a clip of its own.
void TraceSoundPlayer::restartClip()
{
    if (clip < 0)
        return;
    offset = position();
    startedAt = knsGetTime();
    closeClip();
    openClip();
}

void TraceSoundPlayer::openClip()
{
    TraceAudioLog* log = TraceAudioLog::current();
    if (log && clip < 0 && !path.empty())
        clip = log->start(path, int32_t(std::lround(position() * 1000.0)), volume, balance);
}

void TraceSoundPlayer::closeClip()
{
    if (TraceAudioLog* log = TraceAudioLog::current(); log && clip >= 0)
        log->stop(clip);
    clip = -1;
}

double TraceSoundPlayer::position() const
{
    return std::min(length, playing ? offset + secondsSince(startedAt) : offset);
}

void TraceSoundPlayer::install()
{
    KSoundSupport::setNativeFactory([] { return new TraceSoundPlayer(); });
}

void TraceSoundPlayer::uninstall() { KSoundSupport::setNativeFactory(nullptr); }

// --- Speech ------------------------------------------------------------------------

TraceSpeechEngine::TraceSpeechEngine()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "taleloom-trace-XXXXXX").string();
    if (mkdtemp(pattern.data()))
        folder = pattern;
}

TraceSpeechEngine::~TraceSpeechEngine()
{
    std::error_code ignored;
    if (!folder.empty())
        std::filesystem::remove_all(folder, ignored);
}

const std::vector<KSpeechVoiceInfo>& TraceSpeechEngine::voices() { return knsSpeechEngine().voices(); }

KSpeechNative* TraceSpeechEngine::createSpeech()
{
    if (folder.empty())
        return nullptr;
    std::string path = folder + "/speech-" + std::to_string(++made) + ".wav";
    return new TraceSpeech(knsSpeechEngine().createSpeech(), path);
}

void TraceSpeechEngine::shutdown() { knsSpeechEngine().shutdown(); }

// --- The log of what was heard ------------------------------------------------------

TraceAudioLog::TraceAudioLog(std::string folder)
    : folder(std::move(folder))
    , previous(gAudioLog)
{
    gAudioLog = this;
}

TraceAudioLog::~TraceAudioLog() { gAudioLog = previous; }

TraceAudioLog* TraceAudioLog::current() { return gAudioLog; }

int32_t TraceAudioLog::nowMs() const { return std::max(0, kTimeDifference(knsGetTime(), zero)); }

int32_t TraceAudioLog::start(const std::string& path, int32_t offsetMs, double volume, double balance)
{
    clips.push_back({ path, nowMs(), -1, std::max(0, offsetMs), volume, balance });
    return int32_t(clips.size()) - 1;
}

void TraceAudioLog::stop(int32_t clip)
{
    if (clip < 0 || clip >= int32_t(clips.size()) || clips[size_t(clip)].endMs >= 0)
        return;
    clips[size_t(clip)].endMs = std::max(clips[size_t(clip)].startMs, nowMs());
}

std::string TraceAudioLog::keep(const std::string& path)
{
    std::string copy = folder + "/heard-" + std::to_string(++kept) + ".wav";
    std::error_code failed;
    std::filesystem::copy_file(path, copy, std::filesystem::copy_options::overwrite_existing, failed);
    return failed ? std::string() : copy;
}

void TraceAudioLog::closeAll(int32_t endMs)
{
    for (TraceAudioClip& clip : clips) {
        if (clip.endMs < 0)
            clip.endMs = std::max(clip.startMs, endMs);
    }
}
