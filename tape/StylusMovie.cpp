#include "tape/StylusMovie.h"

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicDeviceState.h"
#include "graphics/KGraphicStateGuard.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMovie.h"
#include "kmultimedia/KMovieSupport.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaImport.h"
#include "tape/TapePage.h"

K_DEFINE_CLASS(StylusMovie, TapeGraphicObject)

StylusMovie::StylusMovie() { setType(MovieType); }

StylusMovie::StylusMovie(const StylusMovie& other)
    : TapeGraphicObject(other)
    , movieFile(other.movieFile)
    , canBeStopped(other.canBeStopped)
    , volume(other.volume)
    , poster(other.poster)
    , posterPath(other.posterPath)
    , posterFailed(other.posterFailed)
{
    setType(MovieType);
}

StylusMovie::~StylusMovie() { clearMovie(); }

KThing* StylusMovie::deepCopy() const { return new StylusMovie(*this); }

KMovie* StylusMovie::getMovie() const { return movie.get(); }

KPath StylusMovie::getMoviePath() const { return tapeMediaPath(getTape(), movieFile); }

// --- The movie and its file ------------------------------------------------------

void StylusMovie::setMovie(KMovie& value)
{
    if (movie.get() == &value)
        return;
    clearMovie();
    movie = value;
}

void StylusMovie::clearMovie()
{
    if (!movie)
        return;
    KMoviePtr ending = movie;
    movie.clear();
    ending->setFrameHandler(nullptr);
    ending->stop();
    ending->unload();
}

void StylusMovie::setFile(const KFileReference& file)
{
    movieFile = file;
    forgetPoster();
    noteChanged();
}

void StylusMovie::clearFile() { setFile(KFileReference()); }

void StylusMovie::forgetPoster()
{
    poster.clear();
    posterPath.clear();
    posterFailed = false;
}

void StylusMovie::keepPoster(KMovie& source, const KPath& path)
{
    forgetPoster();
    posterPath = path;
    const KGraphicSize& size = source.getNaturalSize();
    KImagePtr frame(new KImage(size));
    if (size.width <= 0 || size.height <= 0 || !frame->hasImage()) {
        posterFailed = true;
        return;
    }
    source.drawFrame(frame->getDevice(), frame->getBounds());
    poster = frame;
}

// Opening a movie waits for its first frame, so the frame is kept for the
// redraws that follow, as long as the file is looked for at the same place.
bool StylusMovie::getFirstFrame(KImagePtr& frame)
{
    frame.clear();
    KPath path = getMoviePath();
    if (path.isEmpty())
        return false;
    if (path == posterPath && (poster || posterFailed)) {
        frame = poster;
        return bool(poster);
    }
    if (!KFileReference(path).doesExist())
        return false;
    KMoviePtr probe(new KMovie());
    probe->setFile(KFileReference(path));
    if (probe->load()) {
        keepPoster(*probe, path);
        probe->unload();
    } else {
        forgetPoster();
        posterPath = path;
        posterFailed = true;
    }
    frame = poster;
    return bool(poster);
}

// --- Drawing ---------------------------------------------------------------------------

void StylusMovie::drawPoster(KGraphicDevice& device, const KGraphicRectangle& destination)
{
    KImagePtr frame;
    if (getFirstFrame(frame))
        frame->drawIn(device, destination);
    else
        fillBlack(device, destination);
}

void StylusMovie::drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target)
{
    drawPoster(device, movedLike(getBounds(), source, target));
}

void StylusMovie::drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source,
                                  const KGraphicRectangle& target)
{
    KGraphicRectangle destination = movedLike(getBounds(), source, target);
    drawPoster(device, destination);
    KGraphicRectangle frame = destination;
    frame.grow(kHighlightWidth, kHighlightWidth);
    KGraphicStateGuard guard(device);
    device.setPenMode(KGraphicDeviceState::CopyForeground);
    device.setPenSize(kHighlightWidth);
    device.frameRectangle(frame, KColor(KColor::White));
}

void StylusMovie::drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to)
{
    fillBlack(device, movedLike(getBounds(), from, to));
}

void StylusMovie::redrawOver() { }

// --- Playing -------------------------------------------------------------------------------

void StylusMovie::startPlaying()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    clearMovie();
    KPath path = getMoviePath();
    TapeHost& host = TapeHost::get();
    bool playable = !path.isEmpty() && KFileReference(path).doesExist();
    if (playable && KMovieSupport::availableEngines() == 0) {
        host.checkMovieEngine();
        playable = false;
    }
    TapePage* page = getPage();
    if (!playable || !page || !openMovie(*page, path)) {
        passWithoutMovie(*tape);
        return;
    }
    if (canBeStopped)
        buttonWasUp = !host.isMouseButtonDown();
    movie->play();
    if (!movie->isPlaying()) {
        passWithoutMovie(*tape);
        return;
    }
    host.showingMovie(true);
}

// The frames go straight into the page image at the element's bounds; the
// page is told of each one, which brings it to the screen with the next
// frame of the scene.
bool StylusMovie::openMovie(TapePage& page, const KPath& path)
{
    KMoviePtr opened(new KMovie());
    opened->setFile(KFileReference(path));
    opened->setTargetDevice(page.getPageDevice());
    opened->setRectangle(getBounds());
    if (!opened->load())
        return false;
    if (!(path == posterPath && poster))
        keepPoster(*opened, path);
    opened->setVolume(volume);
    opened->setFrameHandler([this](const KGraphicRectangle& changed) { showFrame(changed); });
    setMovie(*opened);
    return true;
}

void StylusMovie::passWithoutMovie(Tape& tape)
{
    clearMovie();
    if (TapePage* page = getPage()) {
        KGraphicRectangle bounds = getBounds();
        fillBlack(page->getPageDevice(), bounds);
        page->refresh(bounds);
    }
    tape.clearPlayingObject();
}

// A movie whose element no longer holds the tape (the tape was paused or
// skipped on) stops at its next frame.
void StylusMovie::showFrame(const KGraphicRectangle& changed)
{
    Tape* tape = getTape();
    if (!tape || tape->getPlayingObject() != this) {
        if (movie)
            movie->stop();
        return;
    }
    if (TapePage* page = getPage())
        page->refresh(changed);
}

void StylusMovie::driveIfUnmanaged()
{
    KMediaManager* manager = KMediaManager::current();
    if (manager && manager->hasMedia(*movie) && manager->isIdling())
        return;
    KMoviePtr playing = movie;
    playing->updatePlayback();
    if (playing->isPlaying() && playing->isDonePlaying())
        playing->stop();
}

// Only a press that began after the start counts: the button must have
// been seen up once before a press ends the movie.
bool StylusMovie::stoppedByButton()
{
    if (!canBeStopped)
        return false;
    bool down = TapeHost::get().isMouseButtonDown();
    if (!buttonWasUp) {
        buttonWasUp = !down;
        return false;
    }
    return down;
}

void StylusMovie::playStep()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    if (!movie) {
        tape->clearPlayingObject();
        return;
    }
    driveIfUnmanaged();
    if (!movie || !movie->isPlaying() || stoppedByButton()) {
        finish(*tape);
        return;
    }
    movie->setRectangle(getBounds());
}

void StylusMovie::finish(Tape& tape)
{
    stopPlaying();
    tape.clearPlayingObject();
}

void StylusMovie::stopPlaying()
{
    if (!movie)
        return;
    clearMovie();
    TapeHost::get().showingMovie(false);
    if (TapePage* page = getPage()) {
        KGraphicRectangle bounds = getBounds();
        drawPoster(page->getPageDevice(), bounds);
        page->refresh(bounds);
    }
}

// --- Media -------------------------------------------------------------------------------------

bool StylusMovie::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    bool changed = false;
    bool gaveUp = tapeFindMissingMedia(movieFile, getTape(), directory, second, changed);
    if (changed) {
        forgetPoster();
        noteChanged();
    }
    return gaveUp;
}

void StylusMovie::collectMedia(KDirectory& from, KDirectory& to)
{
    if (tapeCollectMedia(movieFile, getTape(), from, to)) {
        forgetPoster();
        noteChanged();
    }
}

bool StylusMovie::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    if (!tapeMediaRefersTo(getTape(), movieFile, oldFile))
        return false;
    setFile(newFile);
    return true;
}

void StylusMovie::addMediaName(KStringBag& names) { tapeAddMediaName(movieFile, names); }

bool StylusMovie::usesMediaNamed(const KString& name)
{
    return !movieFile.getPath().isEmpty() && movieFile.getObjectName() == name;
}

// --- Persistence -------------------------------------------------------------------------------

void StylusMovie::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    TapeGraphicObject::writeToFile(file, version);
    movieFile.writeToFile(file, version);
    file.writeBool(canBeStopped);
    file.writeDouble(volume);
    writer.end();
}

void StylusMovie::readFromFile(KFile& file)
{
    clearMovie();
    forgetPoster();
    movieFile = KFileReference();
    canBeStopped = false;
    volume = 1.0;
    auto readMain = [&](int32_t) {
        TapeGraphicObject::readFromFile(file);
        setType(MovieType);
        tapeReadMediaReference(file, movieFile);
        canBeStopped = file.readBool();
        volume = file.readDouble();
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain } });
    noteChanged();
}

void StylusMovie::describe(KJsonWriter& out) const
{
    TapeGraphicObject::describe(out);
    out.objectMember("movieFile", &movieFile);
    out.member("canBeStopped", canBeStopped);
    out.member("volume", volume);
}
