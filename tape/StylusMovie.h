#pragma once

#include "graphics/KImage.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMultimediaForward.h"
#include "tape/TapeGraphicObject.h"

// A movie file played in a rectangle of the page. While it plays the tape
// stands still; the movie ends by itself or, when it can be stopped, by a
// press of the mouse button that began after it started. Its frames are
// painted into the page image and announced to the page like any other
// drawing. On the finished page the movie shows its first frame, stretched
// to its bounds; a file that is missing or cannot be played shows black and
// passes at once.
class StylusMovie : public TapeGraphicObject {
    K_DECLARE_CLASS(StylusMovie)
public:
    StylusMovie();
    StylusMovie(const StylusMovie& other);
    ~StylusMovie() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    void drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target) override;
    void drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source,
                         const KGraphicRectangle& target) override;
    void drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to) override;
    void redrawOver() override;
    bool findMissingMedia(KDirectory& directory, KDirectory* second) override;
    void collectMedia(KDirectory& from, KDirectory& to) override;
    bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile) override;
    void addMediaName(KStringBag& names) override;
    bool usesMediaNamed(const KString& name) override;

    // The movie that plays; the element stops and drops the one before.
    virtual void setMovie(KMovie& value);
    // Stops, closes and drops the playing movie.
    virtual void clearMovie();
    virtual void setFile(const KFileReference& file);
    virtual void clearFile();
    // The first frame at the movie's own size. False when the file is
    // missing or cannot be opened as a movie; a file that failed is not
    // tried again until the element's file changes.
    virtual bool getFirstFrame(KImagePtr& frame);

    const KFileReference& getMovieFile() const { return movieFile; }
    bool getCanBeStopped() const { return canBeStopped; }
    void setCanBeStopped(bool value) { canBeStopped = value; }
    double getVolume() const { return volume; }
    void setVolume(double value) { volume = value; }
    KMovie* getMovie() const;
    bool getButtonWasUp() const { return buttonWasUp; }
    // Where the file is read from now (see tapeMediaPath).
    KPath getMoviePath() const;

private:
    bool openMovie(TapePage& page, const KPath& path);
    // A movie that cannot play passes: black in its place, the tape goes on.
    void passWithoutMovie(Tape& tape);
    // Ends the movie and lets the tape go on.
    void finish(Tape& tape);
    // Without a media manager to drive it, the element drives the movie.
    void driveIfUnmanaged();
    bool stoppedByButton();
    void showFrame(const KGraphicRectangle& changed);
    void keepPoster(KMovie& source, const KPath& path);
    void forgetPoster();
    void drawPoster(KGraphicDevice& device, const KGraphicRectangle& destination);

    KFileReference movieFile;
    bool canBeStopped = false;
    double volume = 1.0;
    KMoviePtr movie;
    bool buttonWasUp = false;
    // The first frame of the file at posterPath; null with posterFailed when
    // that file could not be opened.
    KImagePtr poster;
    KPath posterPath;
    bool posterFailed = false;
};
