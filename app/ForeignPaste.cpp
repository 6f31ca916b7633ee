#include "app/ForeignPaste.h"

#include "app/ElementDialog.h"
#include "graphics/KImage.h"
#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileSystem.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KMovieSupport.h"
#include "kmultimedia/KSoundSupport.h"
#include "tape/StylusImage.h"
#include "tape/StylusMovie.h"
#include "tape/StylusSound.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaImport.h"
#include "windowing/KClipboardManager.h"

#include <chrono>
#include <filesystem>

namespace {

KPath hostPath(const std::string& utf8) { return KPath(KTextCodec::fromUtf8(utf8), KPath::kHostPlatform); }

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// "%20" and its like back to their bytes; a broken escape stays as written.
std::string unescape(const std::string& text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            int high = hexValue(text[i + 1]);
            int low = hexValue(text[i + 2]);
            if (high >= 0 && low >= 0) {
                out.push_back(char(high * 16 + low));
                i += 2;
                continue;
            }
        }
        out.push_back(text[i]);
    }
    return out;
}

KGraphicSize pictureSizeOf(const KPath& path)
{
    KImage picture;
    if (!picture.createFromPath(path.getNativeText()) || !picture.hasImage())
        return KGraphicSize();
    KGraphicRectangle bounds = picture.getBounds();
    return KGraphicSize(bounds.width, bounds.height);
}

// Where a picture pasted into an untitled project waits for its first save.
KDirectory pastedPicturesFolder()
{
    KPath data = KFileSystem::get().getUserApplicationDataDirectory().getPath();
    return KDirectory(data.getChildFolder("TaleLoom").getChildFolder("Pasted"));
}

} // namespace

bool ForeignPaste::isOffered()
{
    KClipboardManager* system = KClipboardManager::current();
    return system && (system->hasImage() || system->hasData(kUriListFormat));
}

std::vector<std::string> ForeignPaste::pathsOfUriList(const std::vector<uint8_t>& data)
{
    std::vector<std::string> paths;
    std::string text(data.begin(), data.end());
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        start = end + 1;
        while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
            line.pop_back();
        if (line.empty() || line[0] == '#' || line.rfind("file://", 0) != 0)
            continue;
        // file:///path, or file://localhost/path.
        std::string rest = line.substr(7);
        size_t slash = rest.find('/');
        if (slash == std::string::npos)
            continue;
        std::string host = rest.substr(0, slash);
        if (!host.empty() && host != "localhost")
            continue;
        std::string path = unescape(rest.substr(slash));
        if (path.find('\0') == std::string::npos)
            paths.push_back(path);
    }
    return paths;
}

std::vector<TapeObjectPtr> ForeignPaste::makeElements(Tape& tape, std::vector<KString>& leftOut)
{
    std::vector<TapeObjectPtr> elements;
    KClipboardManager* system = KClipboardManager::current();
    if (!system)
        return elements;
    // Only a list the clipboard offers: some owners answer any request
    // with what they hold.
    std::vector<uint8_t> list;
    std::vector<std::string> paths;
    if (system->hasData(kUriListFormat) && system->getData(kUriListFormat, list))
        paths = pathsOfUriList(list);
    if (!paths.empty()) {
        for (const std::string& path : paths) {
            if (TapeObjectPtr element = elementForFile(tape, path))
                elements.push_back(element);
            else
                leftOut.push_back(KTextCodec::fromUtf8(std::filesystem::path(path).filename().string()));
        }
        return elements;
    }
    KImage picture;
    if (system->hasImage() && system->getImage(picture)) {
        if (TapeObjectPtr element = elementForPicture(tape, picture))
            elements.push_back(element);
    }
    return elements;
}

// The file joins the project's media as an import does; an untitled
// project refers to it where it is.
bool ForeignPaste::takeIntoMedia(Tape& tape, const KFileReference& source, KFileReference& taken)
{
    taken = source;
    KDirectory* media = tape.getMediaDirectory();
    return !media || importMediaFile(source, *media, taken);
}

KGraphicRectangle ForeignPaste::middleOfPage(Tape& tape, const KGraphicSize& natural)
{
    KGraphicSize page = tape.getPageSize();
    if (page.isEmpty())
        page = TapeHost::get().newDocumentPageSize();
    KGraphicSize size = natural.isEmpty() ? KGraphicSize(int16_t(page.width / 2), int16_t(page.height / 2))
                                          : ElementDialog::fittedSize(natural, page);
    return KGraphicRectangle(int16_t((page.width - size.width) / 2), int16_t((page.height - size.height) / 2),
                             size.width, size.height);
}

TapeObjectPtr ForeignPaste::elementForFile(Tape& tape, const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return TapeObjectPtr();
    KFileReference source(hostPath(path));
    KString extension = source.getPath().getExtension();
    KFileReference taken;
    if (KSoundSupport::isSoundExtension(extension.c_str())) {
        if (!takeIntoMedia(tape, source, taken))
            return TapeObjectPtr();
        StylusSoundPtr sound(new StylusSound());
        sound->setFile(taken);
        return sound;
    }
    if (KMovieSupport::isMovieExtension(extension.c_str())) {
        if (!takeIntoMedia(tape, source, taken))
            return TapeObjectPtr();
        StylusMoviePtr movie(new StylusMovie());
        movie->setFile(taken);
        movie->setBounds(middleOfPage(tape, KGraphicSize()));
        return movie;
    }
    // Anything gdk-pixbuf reads is a picture; the rest is left out before
    // anything is copied.
    KGraphicSize natural = pictureSizeOf(source.getPath());
    if (natural.isEmpty() || !takeIntoMedia(tape, source, taken))
        return TapeObjectPtr();
    StylusImagePtr image(new StylusImage());
    image->setImageFile(taken);
    image->setBounds(middleOfPage(tape, natural));
    return image;
}

// The picture is written as PNG under a name of its own, then taken into
// the media as a file would be.
TapeObjectPtr ForeignPaste::elementForPicture(Tape& tape, KImage& picture)
{
    // A folder of its own for each picture, so that every one keeps the
    // plain name; the media folder numbers them as they come in.
    auto stamp = std::chrono::system_clock::now().time_since_epoch().count();
    KPath base = pastedPicturesFolder().getPath();
    KDirectory folder(base.getChildFolder(KString(std::to_string(stamp).c_str())));
    std::error_code error;
    std::filesystem::create_directories(KTextCodec::toUtf8(folder.getNativeText()), error);
    if (error)
        return TapeObjectPtr();
    KFileReference written(folder.getPath().getChildFile(KString("Pasted Image.png")));
    if (!picture.writeToFile(written))
        return TapeObjectPtr();
    KFileReference taken;
    if (!takeIntoMedia(tape, written, taken))
        return TapeObjectPtr();
    if (!(taken.getPath() == written.getPath())) {
        written.remove();
        folder.remove();
    }
    KGraphicRectangle bounds = picture.getBounds();
    StylusImagePtr image(new StylusImage());
    image->setImageFile(taken);
    image->setBounds(middleOfPage(tape, KGraphicSize(bounds.width, bounds.height)));
    return image;
}
