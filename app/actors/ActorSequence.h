#pragma once

#include "app/AppForward.h"
#include "kernel/KBag.h"
#include "kernel/KString.h"
#include "kernel/KThing.h"

// One movement of an actor: a name and its frames, each frame a whole tape
// painted like a page, with the speed and the way the frames are played.
//
// The timer of a playing movement fires every `speed` * `speed`
// milliseconds, so the slow end of the scale is much slower than the fast
// end is fast.
class ActorSequence : public KThing {
    K_DECLARE_CLASS(ActorSequence)
public:
    static constexpr int32_t kDefaultSpeed = 10;
    static constexpr int32_t kDefaultPlayType = 5;

    // Named after the translation of "Movement" followed by "1", without
    // frames.
    ActorSequence();
    // Every frame tape is copied.
    ActorSequence(const ActorSequence& other);
    ActorSequence& operator=(const ActorSequence&) = delete;
    ~ActorSequence() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // The operations of the elements, over every element of every frame.
    virtual void collectMedia(KDirectory& from, KDirectory& to);
    // True when any element changed.
    virtual bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile);
    virtual void addMediaName(KStringBag& names);
    // Stops at the first element that uses the name.
    virtual bool usesMediaNamed(const KString& name);
    // True when the user gave up the search; stops there.
    bool findMissingMedia(KDirectory& directory, KDirectory* second);

    const KString& getName() const { return name; }
    void setName(const KString& value) { name = value; }
    int32_t getSpeed() const { return speed; }
    void setSpeed(int32_t value) { speed = value; }
    int32_t getPlayType() const { return playType; }
    void setPlayType(int32_t value) { playType = value; }

    KBag& getFrames() { return frames; }
    const KBag& getFrames() const { return frames; }
    int32_t getFrameCount() const { return frames.getSize(); }
    // Null for an index out of range.
    Tape* getFrame(int32_t index) const;
    void addFrame(Tape& frame);
    // `index` from 0 to the count; the count appends.
    void insertFrame(Tape& frame, int32_t index);
    void removeFrameAt(int32_t index);

private:
    // Elements that are not tapes have no place among the frames.
    void dropForeignFrames();

    KString name;
    KBag frames;
    int32_t speed = kDefaultSpeed;
    int32_t playType = kDefaultPlayType;
};
