#pragma once

#include "kmultimedia/KMediaSupport.h"

#include <vector>

class KFileType;

// The support of movies: which engines this platform can start (bit 1
// QuickTime, bit 2 the platform's own player) and the file types that are
// movies. A single object of the library; a new one replaces the earlier
// one as the current support.
class KMovieSupport : public KMediaSupport {
    K_DECLARE_CLASS(KMovieSupport)
public:
    enum Engine : int32_t {
        QuickTime = 1,
        Player = 2,
    };

    KMovieSupport();
    ~KMovieSupport() override;

    static KMovieSupport* current();
    // The engines a movie may use now: those of the current support, or
    // those of the platform when no support was made.
    static int32_t availableEngines();

    // Sets a bit for each chosen kind whose engine starts here.
    bool open() override;
    void close() override;
    int32_t getEngineFlags() const { return engineFlags; }

    // The movie types in their fixed order, looked up in the file type
    // registry; extensions not registered are left out.
    std::vector<KFileType*> getMovieFileTypes() const;
    static bool isMovieExtension(const char* extension);

private:
    int32_t engineFlags = 0;
};

// Registers the sound and movie file types with the file type registry,
// leaving types already known alone.
void kRegisterMediaFileTypes();
