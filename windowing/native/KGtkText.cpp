#include "windowing/native/KGtkText.h"

#include <glib.h>

std::string kToUtf8(const char* windowsText)
{
    if (!windowsText || !*windowsText)
        return {};
    gsize written = 0;
    gchar* converted
        = g_convert_with_fallback(windowsText, -1, "UTF-8", "WINDOWS-1252", "?", nullptr, &written, nullptr);
    if (!converted)
        return windowsText;
    std::string result(converted, written);
    g_free(converted);
    return result;
}

std::string kFromUtf8(const char* utf8Text)
{
    if (!utf8Text || !*utf8Text)
        return {};
    gsize written = 0;
    gchar* converted = g_convert_with_fallback(utf8Text, -1, "WINDOWS-1252", "UTF-8", "?", nullptr, &written, nullptr);
    if (!converted)
        return {};
    std::string result(converted, written);
    g_free(converted);
    return result;
}
