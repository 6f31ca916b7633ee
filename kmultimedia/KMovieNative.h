#pragma once

#include <cstdint>

// The interface between KMovie and a native movie player. The player
// decodes on its own threads; every call here is made on the event thread
// and returns at once, except open(), which waits for the first frame up to
// a time limit.

// One decoded frame: 32-bit pixels 0x00RRGGBB in host order (cairo's RGB24),
// valid until the next call on the player that gave it.
struct KMovieFrame {
    const uint32_t* pixels = nullptr;
    int32_t stride = 0; // in pixels
    int32_t width = 0;
    int32_t height = 0;

    bool isValid() const { return pixels && width > 0 && height > 0 && stride >= width; }
};

class KMovieNative {
public:
    // The engine tags: what a movie's native object begins with.
    enum Engine : int32_t {
        NoEngine = 0,
        QuickTimeEngine = 1,
        PlayerEngine = 2,
    };

    explicit KMovieNative(int32_t engineTag)
        : tag(engineTag)
    {
    }
    virtual ~KMovieNative() = default;
    KMovieNative(const KMovieNative&) = delete;
    KMovieNative& operator=(const KMovieNative&) = delete;

    int32_t engineTag() const { return tag; }

    // Opens the file at the host path and waits for its first frame. False
    // when it cannot be played as a movie.
    virtual bool open(const char* path) = 0;
    virtual void naturalSize(int32_t& width, int32_t& height) const = 0;
    virtual void start() = 0;
    virtual void stop() = 0;
    virtual void pause() = 0;
    // Seconds; 0 when unknown.
    virtual double duration() const = 0;
    // A fraction from 0 to 1 of the duration.
    virtual void seek(double fraction) = 0;
    // Takes what the player has decoded and reads its messages; true when a
    // new frame became current. Must be called on every pass while playing:
    // a player whose frames are not taken never reaches its end.
    virtual bool update() = 0;
    // The frame to show now: the newest taken, or the first one after open.
    virtual KMovieFrame currentFrame() const = 0;
    // The end was reached, or the player failed while playing.
    virtual bool isAtEnd() const = 0;

private:
    int32_t tag;
};

// The native side: which engines this platform has (bit 1 QuickTime,
// bit 2 the platform's player), and a new unopened player of an engine,
// null where the platform has none.
int32_t knsAvailableMovieEngines();
KMovieNative* knsCreateMovie(int32_t engineTag);
