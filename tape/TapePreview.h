#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KImage.h"
#include "kernel/KThing.h"
#include "tape/TapeForward.h"
#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

class TapePreviewStage;

// A small picture of the page after each element of a tape, built in the
// program's idle time a piece at a time so that the user never waits.
//
// Contract:
// - The thumbnail of position p (1..count) shows the page as it stands
//   after element p - 1 has been drawn, with the actors on it, letterboxed
//   into 64x48 when the page is not 4:3.
// - An element whose preview is valid keeps its thumbnail; the tape marks
//   elements invalid from a change onwards. The work restarts from the last
//   page transition before the first invalid element, since a transition
//   paints over all that went before.
// - Work runs in slices of about `kSliceMilliseconds` per idle call; the
//   listener hears how many thumbnails are left after each survey.
// - Nothing here draws on or moves the tape's own page or scene.
class TapePreview : public KThing {
    K_DECLARE_CLASS(TapePreview)
public:
    static constexpr int32_t kThumbnailWidth = 64;
    static constexpr int32_t kThumbnailHeight = 48;
    static constexpr double kSliceMilliseconds = 4.0;

    enum State : int32_t {
        Survey = 0,
        DrawElement = 1,
        ComposeActors = 2,
        Downscale = 3,
        Store = 4,
        Finished = 5,
    };

    using ProgressListener = std::function<void(int32_t remaining, int32_t count)>;
    using IdleSwitch = std::function<void(TapePreview&, bool wanted)>;

    TapePreview();
    ~TapePreview() override;

    // The tape whose thumbnails are built; all thumbnails are forgotten.
    void setTape(Tape* tape);
    Tape* getTape() const { return tape.get(); }
    void setStage(TapePreviewStage* stage) { actorStage = stage; }
    void setProgressListener(ProgressListener listener) { progress = std::move(listener); }
    // How the preview puts itself on and takes itself off the program's
    // idle list; without one it only runs when asked.
    void setIdleSwitch(IdleSwitch idleSwitch) { onIdleList = std::move(idleSwitch); }

    // After a change of the tape: the work starts again with a survey.
    void requestUpdate();
    // One state of the work; false once there is nothing left to do.
    bool step();
    // Steps until `milliseconds` are spent or the work is done.
    void runSlice(double milliseconds);
    // The idle call: one slice.
    void idle() override;
    // Finishes every invalid thumbnail at once, telling `progress` how many
    // of `count` are done after each one.
    void writeAll(const std::function<void(int32_t done, int32_t count)>& progress = {});

    // The thumbnail of position p, or null while it is not built.
    KImage* getThumbnail(int32_t p) const;
    int32_t getState() const { return state; }
    int32_t getLastDone() const { return lastDone; }
    bool isFinished() const { return state == Finished; }

    // How many elements were drawn on the work page since the last reset:
    // what a change costs.
    int64_t getElementsDrawn() const { return elementsDrawn; }
    void resetElementsDrawn() { elementsDrawn = 0; }
    // The time spent in each state, for diagnosis.
    double getStateMilliseconds(int32_t which) const;

    // The rectangle of the thumbnail a page of `size` fills.
    static KGraphicRectangle letterbox(const KGraphicSize& size);

    // --- The thumbnails file beside the document ---------------------------------
    // A digest of the tape's bytes: the file holds only for the same tape.
    static uint64_t digestOf(Tape& tape);
    // Writes every valid thumbnail; false when the file cannot be written.
    bool saveThumbnails(const KString& path);
    // Takes the thumbnails of a file written for this very tape and marks
    // the elements valid; a foreign, damaged or stale file is ignored.
    bool loadThumbnails(const KString& path);

private:
    void survey();
    void startPage();
    void drawNextElement();
    void composeActors();
    void downscale();
    void store();
    void ensureImages();
    void setState(int32_t next);

    KPtr<Tape> tape;
    TapePreviewStage* actorStage = nullptr;
    ProgressListener progress;
    IdleSwitch onIdleList;
    KImagePtr workPage;
    KImagePtr scratchPage;
    KImagePtr thumbnail;
    std::vector<KImagePtr> thumbnails;
    int32_t state = Survey;
    int32_t firstInvalid = 0;
    int32_t nextIndex = 0;
    int32_t lastDone = -1;
    int64_t elementsDrawn = 0;
    double stateMilliseconds[6] = {};
};

using TapePreviewPtr = KPtr<TapePreview>;
