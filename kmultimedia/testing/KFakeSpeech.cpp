#include "kmultimedia/testing/KFakeSpeech.h"

namespace {

class KFakeSpeech final : public KSpeechNative {
public:
    explicit KFakeSpeech(std::shared_ptr<KFakeSpeechEngine::Script> script)
        : script(std::move(script))
    {
    }

    bool open(const char*) override { return true; }
    bool speak(const KSpeechRequest& request) override
    {
        script->requests.push_back(request);
        script->positionMs = 0;
        script->done = script->speaksAtOnce;
        unread = script->words;
        return true;
    }
    void pause() override { script->paused = true; }
    void resume() override { script->paused = false; }
    void cancel() override
    {
        ++script->cancels;
        unread.clear();
    }
    void setVolume(double volume) override { script->volume = volume; }
    int32_t positionMs() const override { return script->positionMs; }
    void takeWords(std::vector<KSpeechRawWord>& out) override
    {
        out.insert(out.end(), unread.begin(), unread.end());
        unread.clear();
    }
    void update() override { }
    bool isDone() const override { return script->done; }

private:
    std::shared_ptr<KFakeSpeechEngine::Script> script;
    std::vector<KSpeechRawWord> unread;
};

KSpeechVoiceInfo voice(const char* name, const char* identifier, std::vector<std::pair<std::string, int32_t>> languages)
{
    KSpeechVoiceInfo info;
    info.name = name;
    info.identifier = identifier;
    info.languages = std::move(languages);
    return info;
}

} // namespace

// A few voices shaped like espeak-ng's, one with a name the Windows set
// cannot hold.
KFakeSpeechEngine::KFakeSpeechEngine()
    : voiceList({
        voice("German", "gmw/de", { { "de", 5 } }),
        voice("English (Great Britain)", "gmw/en", { { "en-gb", 2 }, { "en", 2 } }),
        voice("English (America)", "gmw/en-US", { { "en-us", 2 }, { "en", 3 } }),
        voice("French (France)", "roa/fr", { { "fr-fr", 5 }, { "fr", 5 } }),
        voice("Italian", "roa/it", { { "it", 5 } }),
        voice("Greek \xCE\xB1", "grk/el", { { "el", 5 } }),
    })
{
}

KSpeechNative* KFakeSpeechEngine::createSpeech() { return new KFakeSpeech(script); }
