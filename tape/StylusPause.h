#pragma once

#include "tape/TapeObject.h"
#include "windowing/KWindowingForward.h"

// A fixed time during which the story stands still. It draws nothing. The
// time is counted from the tick the pause starts on and looked at on each
// later tick, so even a pause of 0 milliseconds holds the tape for one tick.
class StylusPause : public TapeObject {
    K_DECLARE_CLASS(StylusPause)
public:
    static constexpr int32_t kDefaultDuration = 2000;

    StylusPause();
    StylusPause(const StylusPause& other);
    ~StylusPause() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    void redrawOver() override;

    int32_t getDuration() const { return duration; }
    // Milliseconds; a negative time is 0.
    void setDuration(int32_t milliseconds);
    KTimer& getTimer() const { return *timer; }

private:
    int32_t duration = kDefaultDuration;
    KPtr<KTimer> timer;
};
