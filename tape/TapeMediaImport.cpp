#include "tape/TapeMediaImport.h"

#include "kernel/KDirectory.h"
#include "kernel/KFile.h"
#include "kernel/KPath.h"
#include "kernel/KStringBag.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaName.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int32_t kCopyChunk = 64 * 1024;
// A name still taken after this many numbers is given up on.
constexpr int32_t kMaxNumber = 9999;
// The shortest stem a unique name keeps before its number and extension.
constexpr size_t kMinStem = 1;

// Opens a file for reading in direct mode; false when it cannot be read.
bool openForReading(KFile& file, int32_t& size)
{
    file.setMode(KFileModeDirect);
    file.open();
    if (file.getError() != 0 || !file.isOpen())
        return false;
    size = file.getSize();
    return file.getError() == 0 && size >= 0;
}

// Reads exactly `size` bytes into `buffer`; false on any failure.
bool readChunk(KFile& file, std::vector<char>& buffer, int32_t size)
{
    buffer.resize(size_t(size));
    return file.read(buffer.data(), size) == size && file.getError() == 0;
}

bool sameBytes(const KFileReference& a, const KFileReference& b)
{
    KFile first(a);
    KFile second(b);
    int32_t firstSize = 0;
    int32_t secondSize = 0;
    if (!openForReading(first, firstSize) || !openForReading(second, secondSize) || firstSize != secondSize)
        return false;
    std::vector<char> left;
    std::vector<char> right;
    for (int32_t done = 0; done < firstSize;) {
        int32_t chunk = std::min(kCopyChunk, firstSize - done);
        if (!readChunk(first, left, chunk) || !readChunk(second, right, chunk) || left != right)
            return false;
        done += chunk;
    }
    return true;
}

// Writes the copy beside the target and puts it in place only when every
// byte arrived, so that a failed copy leaves nothing behind.
bool copyFile(const KFileReference& source, const KPath& destination)
{
    KFile in(source);
    int32_t size = 0;
    if (!openForReading(in, size))
        return false;
    KFile out(destination);
    out.setMode(KFileModeDirect);
    if (!out.beginAtomicWrite())
        return false;
    std::vector<char> buffer;
    for (int32_t done = 0; done < size;) {
        int32_t chunk = std::min(kCopyChunk, size - done);
        if (!readChunk(in, buffer, chunk)) {
            out.abandonAtomicWrite();
            return false;
        }
        out.write(buffer.data(), chunk);
        if (out.getError() != 0) {
            out.abandonAtomicWrite();
            return false;
        }
        done += chunk;
    }
    return out.commitAtomicWrite();
}

// A name that the file system and the name check both accept: separators
// and control characters become underscores.
std::string cleanStem(const KString& name)
{
    std::string stem(name.c_str(), size_t(name.getLength()));
    for (char& c : stem) {
        if (c == '/' || c == '\\' || c == ':' || static_cast<unsigned char>(c) < 0x20)
            c = '_';
    }
    if (stem.empty() || stem == "." || stem == "..")
        stem = "Media";
    return stem;
}

// The name for the attempt `number`: 0 the plain name, then the stem with
// "-1", "-2" and so on, cut so that the whole stays within the limit.
bool uniqueName(const std::string& stem, const std::string& suffix, int32_t number, KString& out)
{
    std::string tag = number == 0 ? std::string() : "-" + std::to_string(number);
    size_t room = size_t(kMaxMediaNameLength);
    if (suffix.size() + tag.size() + kMinStem > room)
        return false;
    std::string name = stem.substr(0, room - suffix.size() - tag.size()) + tag + suffix;
    out = KString(name.c_str());
    return tapeIsSafeMediaName(out);
}

bool ensureFolder(KDirectory& folder)
{
    if (folder.doesExist())
        return true;
    return folder.create() && folder.doesExist();
}

// A candidate found by name is moved into the tape's media folder when it
// lies elsewhere, so that the tape can find it by name from now on.
void adoptFound(KFileReference& file, const KFileReference& found, const Tape* tape)
{
    KDirectory* media = tape ? tape->getMediaDirectory() : nullptr;
    if (!media || found.getPath().getParent() == media->getPath()) {
        file = found;
        return;
    }
    KFileReference imported;
    file = importMediaFile(found, *media, imported) ? imported : found;
}

} // namespace

bool importMediaFile(const KFileReference& source, KDirectory& mediaDirectory, KFileReference& imported)
{
    bool reused = false;
    return importMediaFile(source, mediaDirectory, imported, reused);
}

bool importMediaFile(const KFileReference& source, KDirectory& mediaDirectory, KFileReference& imported, bool& reused)
{
    reused = false;
    if (!source.doesExist() || !ensureFolder(mediaDirectory))
        return false;
    const KPath& path = source.getPath();
    std::string stem = cleanStem(path.getName());
    std::string suffix = path.getExtension().isEmpty() ? std::string() : "." + cleanStem(path.getExtension());
    for (int32_t number = 0; number <= kMaxNumber; ++number) {
        KString name;
        if (!uniqueName(stem, suffix, number, name))
            return false;
        KFileReference candidate(mediaDirectory.getPath().getChildFile(name));
        if (candidate.doesExist()) {
            if (!sameBytes(source, candidate))
                continue;
            imported = candidate;
            reused = true;
            return true;
        }
        if (!copyFile(source, candidate.getPath()))
            return false;
        candidate.refresh();
        imported = candidate;
        return true;
    }
    return false;
}

KPath tapeMediaPath(const Tape* tape, const KFileReference& file)
{
    const KPath& stored = file.getPath();
    KDirectory* media = tape ? tape->getMediaDirectory() : nullptr;
    if (!media || stored.isEmpty())
        return stored;
    KString name = file.getObjectName();
    if (name.isEmpty() || !tapeIsSafeMediaName(name))
        return KPath();
    return media->getPath().getChildFile(name);
}

bool tapeMediaExists(const Tape* tape, const KFileReference& file)
{
    KPath path = tapeMediaPath(tape, file);
    return !path.isEmpty() && KFileReference(path).doesExist();
}

void tapeReadMediaReference(KFile& file, KFileReference& reference)
{
    reference.readFromFile(file);
    if (reference.getPath().isEmpty())
        return;
    KString name = reference.getObjectName();
    if (!tapeAcceptMediaName(name))
        reference = KFileReference();
}

bool tapeFindMissingMedia(KFileReference& file, const Tape* tape, KDirectory& directory, KDirectory* second,
                          bool& changed)
{
    changed = false;
    if (file.getPath().isEmpty() || tapeMediaExists(tape, file))
        return false;
    KString name = file.getObjectName();
    for (KDirectory* folder : { &directory, second }) {
        if (!folder)
            continue;
        KFileReference candidate(folder->getPath().getChildFile(name));
        if (candidate.doesExist()) {
            adoptFound(file, candidate, tape);
            changed = true;
            return false;
        }
    }
    KFileReference asked(file);
    bool gaveUp = TapeHost::get().findMissingFile(asked, directory, second);
    if (!gaveUp && asked.getPath() != file.getPath() && asked.doesExist()) {
        adoptFound(file, asked, tape);
        changed = true;
    }
    return gaveUp;
}

bool tapeMediaRefersTo(const Tape* tape, const KFileReference& reference, const KFileReference& file)
{
    if (reference.getPath().isEmpty())
        return false;
    return reference.getPath() == file.getPath() || tapeMediaPath(tape, reference) == file.getPath();
}

bool tapeCollectMedia(KFileReference& file, const Tape* tape, KDirectory& from, KDirectory& to)
{
    if (file.getPath().isEmpty())
        return false;
    KFileReference current(tapeMediaPath(tape, file));
    KFileReference before(current);
    TapeHost::get().collectMediaFile(current, from, to);
    if (current.getPath() == before.getPath())
        return false;
    file = current;
    return true;
}

void tapeAddMediaName(const KFileReference& file, KStringBag& names)
{
    if (file.getPath().isEmpty())
        return;
    KString name = file.getObjectName();
    if (!name.isEmpty() && !names.has(name))
        names.add(name);
}
