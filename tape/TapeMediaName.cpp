#include "tape/TapeMediaName.h"

#include "kernel/KString.h"
#include "tape/TapeHost.h"

#include <string_view>

bool tapeIsSafeMediaName(const KString& name)
{
    std::string_view text(name.c_str(), static_cast<size_t>(name.getLength()));
    if (text.find_first_of("/\\:") != std::string_view::npos)
        return false;
    if (text.find('\0') != std::string_view::npos)
        return false;
    return text != "." && text != "..";
}

bool tapeAcceptMediaName(KString& name)
{
    if (tapeIsSafeMediaName(name))
        return true;
    TapeHost::get().refuseMediaName(name);
    name = KString();
    return false;
}
