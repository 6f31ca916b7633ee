#include "kmultimedia/KMovie.h"

#include "graphics/KWideRectangle.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMovieSupport.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <strings.h>
#include <vector>

K_DEFINE_CLASS(KMovie, KAbstractMedia)

KMovie::KMovie() = default;

KMovie::~KMovie()
{
    KAbstractMedia::stop();
    disposeNative();
    KAbstractMedia::unload();
}

bool KMovie::createFromFile(const KDiskObjectReference& reference)
{
    file.setPath(reference.getPath());
    return true;
}

void KMovie::setFile(const KFileReference& reference) { file.setPath(reference.getPath()); }

int32_t KMovie::getEngineTag() const { return native() ? native()->engineTag() : KMovieNative::NoEngine; }

namespace {

KMovieNative* tryEngine(int32_t engine, const char* path)
{
    if (!(KMovieSupport::availableEngines() & engine))
        return nullptr;
    std::unique_ptr<KMovieNative> player(knsCreateMovie(engine));
    if (!player || !player->open(path))
        return nullptr;
    return player.release();
}

} // namespace

// "MOV" files go to QuickTime first; everything else goes to the platform's
// player first, with QuickTime as the last resort.
KMovieNative* KMovie::openWithEngines(const char* path, bool preferQuickTime)
{
    KMovieNative* player = nullptr;
    if (preferQuickTime)
        player = tryEngine(KMovieSupport::QuickTime, path);
    if (!player)
        player = tryEngine(KMovieSupport::Player, path);
    if (!player && !preferQuickTime)
        player = tryEngine(KMovieSupport::QuickTime, path);
    return player;
}

bool KMovie::load()
{
    if (isLoaded())
        return KAbstractMedia::load();
    const KPath& path = file.getPath();
    if (path.isEmpty())
        return false;
    KString text = path.getNativeText();
    bool isMov = strcasecmp(path.getExtension().c_str(), "MOV") == 0;
    KMovieNative* player = openWithEngines(text.c_str(), isMov);
    if (!player)
        return false;
    int32_t width = 0;
    int32_t height = 0;
    player->naturalSize(width, height);
    naturalSize.set(int16_t(std::clamp(width, 0, 32767)), int16_t(std::clamp(height, 0, 32767)));
    setNativeData(player);
    framesShown = 0;
    return KAbstractMedia::load();
}

void KMovie::disposeNative()
{
    delete native();
    setNativeData(nullptr);
}

void KMovie::unload()
{
    if (getStatus() != Loaded)
        return;
    disposeNative();
    KAbstractMedia::unload();
}

void KMovie::play()
{
    if (getStatus() == NotLoaded && !load())
        return;
    if (getStatus() != Loaded || !targetDevice || !native())
        return;
    if (native()->isAtEnd())
        native()->seek(0.0);
    native()->start();
    KAbstractMedia::play();
}

void KMovie::pause()
{
    if (getStatus() != Playing)
        return;
    native()->pause();
    KAbstractMedia::pause();
}

void KMovie::resume()
{
    if (getStatus() != Paused)
        return;
    native()->start();
    KAbstractMedia::resume();
}

void KMovie::stop()
{
    if (getStatus() != Playing && getStatus() != Paused)
        return;
    native()->stop();
    KAbstractMedia::stop();
}

void KMovie::restart()
{
    if (getStatus() != Playing || !native())
        return;
    native()->seek(0.0);
    native()->start();
}

bool KMovie::isDonePlaying() { return !native() || native()->isAtEnd(); }

// The player must be given its frames on every pass, even when nothing is
// drawn, or it stalls before its end.
void KMovie::updatePlayback()
{
    if (!native())
        return;
    if (native()->update())
        showCurrentFrame();
}

void KMovie::showCurrentFrame()
{
    if (!targetDevice)
        return;
    if (!paintFrame(native()->currentFrame(), *targetDevice, rectangle))
        return;
    ++framesShown;
    if (frameHandler)
        frameHandler(rectangle);
}

double KMovie::getDuration() { return native() ? native()->duration() : 0.0; }

void KMovie::setPosition(double fraction)
{
    KAbstractMedia::setPosition(fraction);
    if (native())
        native()->seek(std::clamp(fraction, 0.0, 1.0));
}

void KMovie::setTargetDevice(KGraphicDevice& device)
{
    unload();
    if (isLoaded()) {
        KErrorHandler::notice("unload first");
        return;
    }
    targetDevice = device;
}

// The player scales nothing: the frame is fitted to the rectangle here, so
// that a new rectangle takes effect with the next frame.
void KMovie::setRectangle(const KGraphicRectangle& r) { rectangle = r; }

void KMovie::drawFrame(KGraphicDevice& device, const KGraphicRectangle& r)
{
    if (native())
        paintFrame(native()->currentFrame(), device, r);
}

namespace {

// For each target column, the source column it shows.
void mapColumns(std::vector<int32_t>& columns, int32_t firstX, int32_t lastX, int32_t left, int32_t width,
                int32_t sourceWidth)
{
    columns.resize(size_t(lastX - firstX));
    for (int32_t x = firstX; x < lastX; ++x)
        columns[size_t(x - firstX)] = int32_t(int64_t(x - left) * sourceWidth / width);
}

} // namespace

bool KMovie::paintFrame(const KMovieFrame& frame, KGraphicDevice& device, const KGraphicRectangle& r)
{
    if (!frame.isValid() || r.width <= 0 || r.height <= 0)
        return false;
    KPixelBuffer pixels;
    if (!device.beginPixelAccess(pixels))
        return false;
    int32_t firstX = std::max<int32_t>(r.x, 0);
    int32_t firstY = std::max<int32_t>(r.y, 0);
    int32_t lastX = std::min<int32_t>(int32_t(r.x) + r.width, pixels.width);
    int32_t lastY = std::min<int32_t>(int32_t(r.y) + r.height, pixels.height);
    if (firstX >= lastX || firstY >= lastY) {
        device.endPixelAccess(KWideRectangle());
        return false;
    }
    bool sameWidth = r.width == frame.width;
    std::vector<int32_t> columns;
    if (!sameWidth)
        mapColumns(columns, firstX, lastX, r.x, r.width, frame.width);
    for (int32_t y = firstY; y < lastY; ++y) {
        int32_t sourceY = int32_t(int64_t(y - r.y) * frame.height / r.height);
        const uint32_t* source = frame.pixels + ptrdiff_t(sourceY) * frame.stride;
        uint32_t* target = pixels.row(y);
        if (sameWidth) {
            std::memcpy(target + firstX, source + (firstX - r.x), size_t(lastX - firstX) * sizeof(uint32_t));
            continue;
        }
        for (int32_t x = firstX; x < lastX; ++x)
            target[x] = source[columns[size_t(x - firstX)]];
    }
    device.endPixelAccess(KWideRectangle(firstX, firstY, lastX - firstX, lastY - firstY));
    return true;
}
