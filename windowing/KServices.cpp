#include "windowing/KServices.h"

KServices& kServices()
{
    static KServices services;
    return services;
}

KString kTranslate(const char* key)
{
    auto translate = kServices().translate;
    return translate ? translate(key) : KString(key);
}
