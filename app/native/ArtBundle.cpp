#include "app/native/ArtBundle.h"

// Made by glib-compile-resources from data/art (see app/CMakeLists.txt).
void taleloom_art_register_resource(void);

void registerArtBundle()
{
    static const bool registered = [] {
        taleloom_art_register_resource();
        return true;
    }();
    (void)registered;
}
