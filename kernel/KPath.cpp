#include "kernel/KPath.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDiskObjectStreams.h"
#include "kernel/KJsonWriter.h"
#include "kernel/native/KNativeFiles.h"

#include <string>
#include <string_view>

namespace {

struct Spelling {
    std::string_view volume;
    std::string_view folder;
    std::string_view mark;
};

Spelling spellingOf(int32_t platform)
{
    switch (platform) {
    case KPath::MacintoshPlatform:
        return { ":", ":", "." };
    case KPath::WindowsPlatform:
        return { ":\\", "\\", "." };
    case KPath::LinuxPlatform:
        return { "", "/", "." };
    default:
        return { "/", "/", "." };
    }
}

KString toKString(std::string_view text)
{
    KString result;
    if (!text.empty())
        result.setText(text.data(), int32_t(text.size()));
    return result;
}

std::string_view viewOf(const KString& text)
{
    return text.isEmpty() ? std::string_view() : std::string_view(text.getText(), size_t(text.getLength()));
}

bool startsWith(std::string_view text, std::string_view prefix)
{
    return !prefix.empty() && text.substr(0, prefix.size()) == prefix;
}

bool endsWith(std::string_view text, std::string_view suffix)
{
    return !suffix.empty() && text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

// Splits off "\\host\" of a Windows network path into the server field.
std::string_view takeServer(std::string_view rest, KString& server)
{
    rest.remove_prefix(2);
    size_t slash = rest.find('\\');
    if (slash == std::string_view::npos) {
        server = toKString(rest);
        return std::string_view();
    }
    server = toKString(rest.substr(0, slash));
    return rest.substr(slash + 1);
}

// The volume before the first volume separator, when a folder separator
// stands somewhere after the first character.
std::string_view takeVolume(std::string_view rest, const Spelling& spelling, KString& volume)
{
    if (spelling.volume.empty())
        return rest;
    size_t folder = rest.find(spelling.folder);
    if (folder == std::string_view::npos || folder == 0)
        return rest;
    size_t mark = rest.find(spelling.volume);
    if (mark == std::string_view::npos)
        return rest;
    volume = toKString(rest.substr(0, mark));
    return rest.substr(mark + spelling.volume.size());
}

} // namespace

K_DEFINE_CLASS(KPath, KThing)

KPath::KPath() = default;

KPath::KPath(const KPath& other)
    : KThing(other)
{
    copyFrom(other);
}

KPath::KPath(const KString& text, int32_t platform) { setFromText(text, platform); }

KPath::~KPath() = default;

KPath& KPath::operator=(const KPath& other)
{
    if (this != &other)
        copyFrom(other);
    return *this;
}

void KPath::copyFrom(const KPath& other)
{
    volume = other.volume;
    name = other.name;
    extension = other.extension;
    server = other.server;
    folders.clear();
    folders.reserve(other.folders.size());
    for (const KStringPtr& folder : other.folders)
        folders.push_back(kAdopt(new KString(*folder)));
}

KThing* KPath::deepCopy() const { return new KPath(*this); }

void KPath::clear()
{
    volume.clear();
    folders.clear();
    name.clear();
    extension.clear();
    server.clear();
}

bool KPath::isEmpty() const
{
    return volume.isEmpty() && folders.empty() && name.isEmpty() && extension.isEmpty() && server.isEmpty();
}

int32_t KPath::getKind() const
{
    if (!name.isEmpty() || !extension.isEmpty())
        return FileKind;
    if (!folders.empty())
        return DirectoryKind;
    if (!volume.isEmpty())
        return VolumeKind;
    return EmptyKind;
}

void KPath::addFolder(const KString& folder)
{
    if (folder.isEmpty())
        return;
    if (folder.isOnHeap())
        folders.push_back(KStringPtr(const_cast<KString*>(&folder)));
    else
        folders.push_back(kAdopt(new KString(folder)));
}

const KString* KPath::getFolder(int32_t index) const
{
    if (index < 0 || index >= int32_t(folders.size()))
        return nullptr;
    return folders[size_t(index)].get();
}

void KPath::removeLastFolder()
{
    if (!folders.empty())
        folders.pop_back();
}

void KPath::setNameAndExtension(const KString& text)
{
    name.clear();
    extension.clear();
    std::string_view part = viewOf(text);
    if (part.empty())
        return;
    if (part.back() == '.') {
        name = toKString(part.substr(0, part.size() - 1));
        return;
    }
    size_t dot = part.rfind('.');
    if (dot == std::string_view::npos) {
        name = text;
        return;
    }
    name = toKString(part.substr(0, dot));
    extension = toKString(part.substr(dot + 1));
}

void KPath::setAll(const KString& volumeText, const KString& folder, const KString& nameText,
                   const KString& extensionText)
{
    clear();
    volume = volumeText;
    addFolder(folder);
    name = nameText;
    extension = extensionText;
}

void KPath::setFromText(const KString& text, int32_t platform)
{
    clear();
    Spelling spelling = spellingOf(platform);
    KString source = text;
    // A Linux reference is always absolute; "." and ".." go away with it.
    if (platform == LinuxPlatform && !text.isEmpty())
        source = knsAbsolutePath(text);
    std::string_view rest = viewOf(source);
    if (platform == WindowsPlatform && startsWith(rest, "\\\\"))
        rest = takeServer(rest, server);
    rest = takeVolume(rest, spelling, volume);
    if (rest.empty())
        return;
    if (startsWith(rest, spelling.folder))
        rest.remove_prefix(spelling.folder.size());
    bool endsInFolder = endsWith(rest, spelling.folder);
    for (;;) {
        size_t separator = rest.find(spelling.folder);
        if (separator == std::string_view::npos)
            break;
        addFolder(toKString(rest.substr(0, separator)));
        rest.remove_prefix(separator + spelling.folder.size());
    }
    if (!endsInFolder)
        setNameAndExtension(toKString(rest));
}

void KPath::appendFileText(std::string& text, int32_t platform) const
{
    Spelling spelling = spellingOf(platform);
    for (const KStringPtr& folder : folders) {
        text += viewOf(*folder);
        text += spelling.folder;
    }
    text += viewOf(name);
    if (!extension.isEmpty()) {
        text += spelling.mark;
        text += viewOf(extension);
    }
}

void KPath::getText(KString& out, int32_t platform, int32_t form) const
{
    std::string text;
    Spelling spelling = spellingOf(platform);
    bool networked = platform == WindowsPlatform && !server.isEmpty();
    // On Linux only a bare name is relative; elsewhere any path without a volume.
    bool relative = volume.isEmpty() && !networked && (platform != LinuxPlatform || folders.empty());
    if (networked) {
        text = "\\\\";
        text += viewOf(server);
        text += "\\";
    } else if (form == Absolute && relative && !isEmpty()) {
        KString current;
        knsCurrentDirectory(current);
        KPath here(current + "/", LinuxPlatform);
        KString prefix;
        here.getText(prefix, platform, AsStored);
        text = viewOf(prefix);
    } else if (!volume.isEmpty()) {
        if (platform == LinuxPlatform) {
            text = "/";
            text += viewOf(volume);
            text += "/";
        } else {
            text = viewOf(volume);
            text += spelling.volume;
        }
    } else if (!folders.empty() && (platform == LinuxPlatform || platform == MacintoshPlatform)) {
        text = spelling.folder;
    }
    appendFileText(text, platform);
    out = toKString(text);
}

KString KPath::getNativeText() const
{
    KString text;
    getText(text, kHostPlatform, Absolute);
    return text;
}

void KPath::getObjectName(KString& out) const
{
    switch (getKind()) {
    case VolumeKind:
        out = volume;
        break;
    case DirectoryKind:
        out = *folders.back();
        break;
    case FileKind:
        out = name;
        if (!extension.isEmpty())
            out += KString(".") + extension;
        break;
    default:
        out.clear();
        break;
    }
}

KPath KPath::getParent() const
{
    KPath parent(*this);
    switch (getKind()) {
    case FileKind:
        parent.clearName();
        parent.clearExtension();
        break;
    case DirectoryKind:
        parent.removeLastFolder();
        break;
    default:
        parent.clear();
        break;
    }
    return parent;
}

KPath KPath::getChildFile(const KString& nameAndExtension) const
{
    KPath child(*this);
    child.setNameAndExtension(nameAndExtension);
    return child;
}

KPath KPath::getChildFolder(const KString& folder) const
{
    KPath child(*this);
    child.clearName();
    child.clearExtension();
    child.addFolder(KString(folder));
    return child;
}

bool KPath::operator==(const KPath& other) const
{
    if (volume != other.volume || name != other.name || extension != other.extension || server != other.server)
        return false;
    if (folders.size() != other.folders.size())
        return false;
    for (size_t i = 0; i < folders.size(); ++i) {
        if (*folders[i] != *other.folders[i])
            return false;
    }
    return true;
}

void KPath::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    KDiskObjectStreams::writeString(file, volume);
    KDiskObjectStreams::writeString(file, name);
    KDiskObjectStreams::writeString(file, extension);
    KDiskObjectStreams::writeStringBag(file, folders);
    if (!server.isEmpty()) {
        writer.newSection(2);
        KDiskObjectStreams::writeString(file, server);
    }
    writer.end();
}

void KPath::readFromFile(KFile& file)
{
    clear();
    auto readMain = [&](int32_t) {
        KDiskObjectStreams::readString(file, volume);
        KDiskObjectStreams::readString(file, name);
        KDiskObjectStreams::readString(file, extension);
        KDiskObjectStreams::readStringBag(file, folders);
    };
    auto readServer = [&](int32_t) { KDiskObjectStreams::readString(file, server); };
    KClassReader::readSections(file, classRecord, { { 1, readMain }, { 2, readServer } });
}

void KPath::describe(KJsonWriter& out) const
{
    out.member("volume", volume);
    out.key("folders");
    out.beginArray();
    for (const KStringPtr& folder : folders)
        out.value(*folder);
    out.endArray();
    out.member("name", name);
    out.member("extension", extension);
    out.member("server", server);
}
