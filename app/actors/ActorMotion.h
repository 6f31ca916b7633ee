#pragma once

#include "app/AppForward.h"
#include "graphics/KGraphicPoint.h"
#include "kernel/KBag.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeObject.h"
#include "windowing/KTimer.h"

// A path drawn by the user with the mouse, along which an actor of the tape
// travels: one recorded segment a tick of the tape. The points are kept as
// x, y pairs in page units.
//
// The scene draws only at its own frames, so a segment shows as one jump to
// its end point; the actor is nevertheless set on every point of the line,
// for whatever follows its position.
class ActorMotion : public TapeObject {
    K_DECLARE_CLASS(ActorMotion)
public:
    // Paths of up to this many entries (five points) rest at their end for
    // a few ticks, so that a short one does not pass unseen.
    static constexpr int32_t kShortPathEntries = 10;
    // Ticks that a path of a single point rests there.
    static constexpr int16_t kSinglePointRest = 5;

    ActorMotion();
    // Takes the path and the actor's name; nothing of a play in progress.
    ActorMotion(const ActorMotion& other);
    ~ActorMotion() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    void drawOnPage() override;
    void redrawOver() override;
    // The path is not a picture of the page: these change nothing.
    void drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to) override;
    void scale(double x, double y) override;
    void scale(double factor) override;
    void scaleBetween(const KGraphicRectangle& oldBounds, const KGraphicRectangle& newBounds) override;
    void moveBy(int16_t x, int16_t y) override;
    bool findMissingMedia(KDirectory& directory, KDirectory* second) override;
    void collectMedia(KDirectory& from, KDirectory& to) override;
    bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile) override;
    void addMediaName(KStringBag& names) override;
    bool usesMediaNamed(const KString& name) override;

    void setActorName(const KString& value);
    const KString& getActorName() const override { return actorName; }
    void addPoint(int16_t x, int16_t y);
    int32_t getPointCount() const { return path.getSize() / 2; }
    KGraphicPoint getPoint(int32_t index) const;
    // (0, 0) for an empty path.
    KGraphicPoint getFirstPoint() const;
    KGraphicPoint getLastPoint() const;

    int32_t getPathIndex() const { return pathIndex; }
    int32_t getLastX() const { return lastX; }
    int32_t getLastY() const { return lastY; }
    int16_t getRestTicks() const { return restTicks; }
    bool isMovingActor() const { return bool(actor); }

private:
    void takePath(const KBag& read);
    int16_t entryAt(int32_t index) const;
    bool stepTimerRanOut() const;
    void restartStepTimer();
    // Walks the actor from where it stands to the next point of the path.
    void walkSegment();
    void afterSegment();
    void finish();

    KBag path;
    int32_t pathIndex = 0;
    int32_t lastX = 0;
    int32_t lastY = 0;
    KTimerPtr stepTimer;
    int16_t restTicks = 0;
    KString actorName;
    ActorPtr actor;
};
