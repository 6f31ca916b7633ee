#pragma once

#include "kmultimedia/KSoundNative.h"

#include <memory>
#include <string>
#include <vector>

// A native sound player without sound: it records the calls made on it and
// plays a fixed duration by a clock the test moves. Files whose name ends in
// ".bad" fail to open.
class KFakeSound final : public KSoundNative {
public:
    // What the tests read and set, shared with the test after the sound
    // took the player.
    struct Script {
        double duration = 2.0;
        double position = 0.0;
        // Whether the player can tell its position; a real one may not, for
        // a while after it starts.
        bool positionKnown = true;
        double volume = 1.0;
        double balance = 0.0;
        bool playing = false;
        bool failWhilePlaying = false;
        std::string openedPath;
        std::string renderPath;
        std::vector<std::string> calls;
    };

    explicit KFakeSound(std::shared_ptr<Script> script)
        : script(std::move(script))
    {
    }

    bool open(const char* path, const char* renderPath) override;
    void start() override;
    void pause() override;
    void seek(double seconds) override;
    double duration() const override { return script->duration; }
    double position() const override { return script->position; }
    bool queryPosition(double& seconds) const override
    {
        if (!script->positionKnown)
            return false;
        seconds = script->position;
        return true;
    }
    void setVolume(double volume) override { script->volume = volume; }
    void setBalance(double balance) override { script->balance = balance; }
    void update() override;
    bool isAtEnd() const override { return script->position >= script->duration || failed; }
    bool hasFailed() const override { return failed; }
    const std::string& failure() const override { return reason; }

    // Installs a factory that makes fakes sharing the script; uninstall with
    // an empty script.
    static void install(std::shared_ptr<Script> script);
    // Moves the play position of a playing fake.
    static void advance(Script& script, double seconds);

private:
    std::shared_ptr<Script> script;
    bool failed = false;
    std::string reason;
};
