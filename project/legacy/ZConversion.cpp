#include "project/legacy/ZConversion.h"

#include "graphics/native/KNativeImageFile.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

std::string upper(std::string text)
{
    for (char& c : text)
        c = char(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// The file of that name in the folder, in any case: old names were spelt
// on systems that ignore case.
std::string findInFolder(const fs::path& folder, const std::string& name)
{
    std::error_code error;
    if (!fs::is_directory(folder, error))
        return {};
    if (fs::is_regular_file(folder / name, error))
        return (folder / name).string();
    std::string wanted = upper(name);
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (entry.is_regular_file(error) && upper(entry.path().filename().string()) == wanted)
            return entry.path().string();
    }
    return {};
}

KFileReference referenceTo(const std::string& path)
{
    return KFileReference(KPath(KTextCodec::fromUtf8(path), KPath::kHostPlatform));
}

} // namespace

ZConversion::ZConversion(const std::string& from, const std::string& media, int32_t sourcePlatform,
                         OldDocumentReport& summary)
    : oldFolder(from)
    , mediaFolder(media)
    , platform(sourcePlatform)
    , report(summary)
    , publisher(new KMediaPublisher())
{
    // Names keep their length: the new project is no publication.
    publisher->setMaxNameLength(255);
}

std::string ZConversion::bareName(const std::string& oldName, int32_t platform)
{
    // A drive's colon ends a Windows name's first part too.
    const char* separators = platform == KString::Macintosh ? ":" : "\\/:";
    size_t cut = oldName.find_last_of(separators);
    return cut == std::string::npos ? oldName : oldName.substr(cut + 1);
}

std::string ZConversion::findSource(const std::string& bare) const
{
    if (bare.empty())
        return {};
    std::string found = findInFolder(oldFolder, bare);
    return found.empty() ? findInFolder(fs::path(oldFolder) / "Media", bare) : found;
}

KFileReference ZConversion::mediaFile(const KString& oldName, bool picture)
{
    // Characters no file system of today takes in a name (a Macintosh name
    // could hold "/") are replaced, so the name stays a plain one.
    std::string bare = KMediaPublisher::safeName(bareName(KTextCodec::toUtf8(oldName), platform));
    std::string source = findSource(bare);
    if (source.empty()) {
        if (!bare.empty() && std::find(report.missing.begin(), report.missing.end(), bare) == report.missing.end())
            report.missing.push_back(bare);
        return referenceTo((fs::path(mediaFolder) / (bare.empty() ? "missing" : bare)).string());
    }
    bool known = std::find(sources.begin(), sources.end(), source) != sources.end();
    std::string name = publisher->reserveName(source);
    if (!known) {
        sources.push_back(source);
        KNativeImageFile::Picture probe;
        if (picture && !KNativeImageFile::read(source, probe))
            report.unreadable.push_back(bare);
    }
    return referenceTo((fs::path(mediaFolder) / name).string());
}

bool ZConversion::copyMedia(std::string& reason)
{
    publisher->setDirectory(mediaFolder);
    for (const std::string& source : sources) {
        std::string name;
        if (!publisher->publish(source, name)) {
            reason = source + ": " + "Error Copying File";
            return false;
        }
        ++report.mediaCopied;
    }
    return true;
}
