#pragma once

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KFileReference.h"
#include "kmultimedia/KAbstractMedia.h"
#include "kmultimedia/KMovieNative.h"

#include <functional>

// A video file shown in a rectangle of a drawing surface. While it plays,
// each idle pass takes the newest decoded frame and paints it, scaled to
// the rectangle, into the target device; the owner learns of each painted
// rectangle through the frame handler and passes it on to whatever shows
// the device. A movie that cannot be opened stays unloaded and paints
// nothing.
class KMovie : public KAbstractMedia {
    K_DECLARE_CLASS(KMovie)
public:
    using FrameHandler = std::function<void(const KGraphicRectangle& changed)>;

    KMovie();
    KMovie(const KMovie&) = delete;
    KMovie& operator=(const KMovie&) = delete;
    ~KMovie() override;

    // Names the file; it is opened by load.
    bool createFromFile(const KDiskObjectReference& file) override;
    void setFile(const KFileReference& reference);
    const KFileReference& getFile() const { return file; }

    bool load() override;
    void unload() override;
    // Loads first when needed; nothing happens without a target device.
    void play() override;
    void pause() override;
    void resume() override;
    void stop() override;
    // Back to the first frame, still playing: the loop of a looping movie.
    void restart() override;
    bool isDonePlaying() override;
    void updatePlayback() override;
    double getDuration() override;
    void setPosition(double fraction) override;

    // Unloads the movie first; a movie that stays loaded keeps its device.
    virtual void setTargetDevice(KGraphicDevice& device);
    virtual void setRectangle(const KGraphicRectangle& r);
    // Paints the current frame (after load, the first one) into the device
    // at the rectangle; used for the poster and to leave the last frame on
    // the page.
    virtual void drawFrame(KGraphicDevice& device, const KGraphicRectangle& r);

    KGraphicDevice* getTargetDevice() const { return targetDevice.get(); }
    const KGraphicRectangle& getRectangle() const { return rectangle; }
    const KGraphicSize& getNaturalSize() const { return naturalSize; }
    int32_t getEngineTag() const;
    void setFrameHandler(FrameHandler handler) { frameHandler = std::move(handler); }
    // Frames painted since load.
    int32_t getFramesShown() const { return framesShown; }

    // Paints a frame scaled to the rectangle, clipped by the device's
    // bounds, nearest pixel. False when nothing could be painted.
    static bool paintFrame(const KMovieFrame& frame, KGraphicDevice& device, const KGraphicRectangle& r);

private:
    KMovieNative* native() const { return static_cast<KMovieNative*>(getNativeData()); }
    KMovieNative* openWithEngines(const char* path, bool preferQuickTime);
    void disposeNative();
    void showCurrentFrame();

    KGraphicDevicePtr targetDevice;
    KFileReference file;
    KGraphicRectangle rectangle;
    KGraphicSize naturalSize;
    FrameHandler frameHandler;
    int32_t framesShown = 0;
};
