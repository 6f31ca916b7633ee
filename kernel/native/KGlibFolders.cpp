// GLib services of the disk objects: file-name encoding, the well-known
// folders, the current directory and the program's compiled resources.

#include "kernel/native/KNativeFiles.h"

#include "kernel/KMemory.h"
#include "kernel/KTextCodec.h"

#include <gio/gio.h>
#include <glib.h>

#include <climits>
#include <string>
#include <unistd.h>

namespace {

std::string withoutTrailingSlash(std::string text)
{
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return text;
}

const char* userSpecialFolder(GUserDirectory which)
{
    const char* folder = g_get_user_special_dir(which);
    return folder ? folder : g_get_home_dir();
}

std::string specialFolderText(int32_t folder)
{
    switch (folder) {
    case KNativeFolderCommonApplicationData: {
        const gchar* const* dirs = g_get_system_data_dirs();
        return dirs && dirs[0] ? dirs[0] : "/usr/share";
    }
    case KNativeFolderApplication: {
        std::string program = knsFileSystemName(knsProgramFile());
        size_t slash = program.rfind('/');
        return slash == std::string::npos ? std::string() : program.substr(0, slash);
    }
    case KNativeFolderUserApplicationData:
        return g_get_user_data_dir();
    case KNativeFolderTemporary:
        return g_get_tmp_dir();
    case KNativeFolderDocuments:
        return userSpecialFolder(G_USER_DIRECTORY_DOCUMENTS);
    case KNativeFolderPictures:
        return userSpecialFolder(G_USER_DIRECTORY_PICTURES);
    case KNativeFolderMusic:
        return userSpecialFolder(G_USER_DIRECTORY_MUSIC);
    case KNativeFolderVideo:
        return userSpecialFolder(G_USER_DIRECTORY_VIDEOS);
    case KNativeFolderDesktop:
        return userSpecialFolder(G_USER_DIRECTORY_DESKTOP);
    case KNativeFolderCurrent: {
        gchar* current = g_get_current_dir();
        std::string text = current;
        g_free(current);
        return text;
    }
    default:
        return std::string();
    }
}

} // namespace

std::string knsFileSystemName(const KString& path) { return KTextCodec::toUtf8(path); }

KString knsHostName(const char* fileSystemName)
{
    return fileSystemName ? KTextCodec::fromUtf8(fileSystemName) : KString();
}

bool knsCurrentDirectory(KString& out)
{
    out = knsHostName(specialFolderText(KNativeFolderCurrent).c_str());
    return !out.isEmpty();
}

KString knsAbsolutePath(const KString& text)
{
    std::string name = knsFileSystemName(text);
    if (name.empty())
        return KString();
    bool endsInSlash = name.back() == '/';
    gchar* canonical = g_canonicalize_filename(name.c_str(), nullptr);
    std::string result = canonical;
    g_free(canonical);
    // A trailing separator says "folder"; keep it for the parser.
    if (endsInSlash && result.back() != '/')
        result += '/';
    return knsHostName(result.c_str());
}

bool knsSpecialFolder(int32_t folder, KString& out)
{
    std::string text = withoutTrailingSlash(specialFolderText(folder));
    out = knsHostName(text.c_str());
    return !out.isEmpty();
}

KString knsProgramFile()
{
    char buffer[PATH_MAX];
    ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (length <= 0)
        return KString();
    buffer[length] = 0;
    return knsHostName(buffer);
}

bool knsReadProgramResource(int16_t id, void** data, int32_t* size)
{
    std::string path = "/org/taleloom/rcdata/" + std::to_string(id);
    return knsReadProgramResourcePath(path.c_str(), data, size);
}

bool knsReadProgramResourcePath(const char* path, void** data, int32_t* size)
{
    *data = nullptr;
    *size = 0;
    GBytes* bytes = g_resources_lookup_data(path, G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr);
    if (!bytes)
        return false;
    gsize length = 0;
    const void* source = g_bytes_get_data(bytes, &length);
    bool fits = length > 0 && length < gsize(INT32_MAX);
    if (fits) {
        *data = KMemory::allocate(length, false);
        KMemory::copy(source, *data, length);
        *size = int32_t(length);
    }
    g_bytes_unref(bytes);
    return fits;
}
