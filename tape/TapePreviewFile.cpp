#include "graphics/KImage.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "tape/Tape.h"
#include "tape/TapeObject.h"
#include "tape/TapePreview.h"
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <unistd.h>

// The thumbnails file: a cache beside the document, so a story opens with
// its thumbnails ready. Layout, all numbers big-endian:
//   0  "TLPV"
//   4  version (1)
//   8  count of positions
//   12 width and height of a thumbnail (16 bits each)
//   16 digest of the tape's bytes (64 bits)
//   24 per position 1..count: a 32-bit length, then the image's record.
// Anything that does not match the tape at hand is ignored; the thumbnails
// are then simply built again.

namespace {

constexpr char kMagic[4] = { 'T', 'L', 'P', 'V' };
constexpr uint32_t kVersion = 1;
constexpr size_t kHeaderSize = 24;
// A thumbnail's record is a few kilobytes; anything far larger is damage.
constexpr uint32_t kLargestRecord = 1 << 20;
constexpr size_t kLargestFile = size_t(64) << 20;

void putLong(std::string& out, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(char((value >> shift) & 0xFF));
}

uint32_t getLong(const uint8_t* bytes)
{
    return uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3];
}

uint64_t fnv1a(const uint8_t* bytes, size_t size)
{
    uint64_t hash = 14695981039346656037ULL;
    for (size_t i = 0; i < size; ++i) {
        hash ^= bytes[i];
        hash *= 1099511628211ULL;
    }
    return hash;
}

// The bytes a record of `image` takes in a stream.
bool imageRecord(KImage& image, std::string& out)
{
    KFile stream;
    stream.setMode(KFileModeMemory);
    image.writeToFile(stream, 0);
    const auto* bytes = static_cast<const char*>(stream.getMemoryData());
    if (!bytes || stream.getMemorySize() <= 0)
        return false;
    out.assign(bytes, size_t(stream.getMemorySize()));
    return true;
}

// A thumbnail read back from its record; null unless it is whole and of
// the thumbnail's size.
KImagePtr readImage(const uint8_t* bytes, uint32_t size)
{
    void* block = KMemory::allocate(size + 1, false);
    std::memcpy(block, bytes, size);
    KFile stream;
    stream.setMode(KFileModeReadBuffered);
    stream.openFromRAM(block, int32_t(size));
    KImagePtr image(new KImage());
    bool read = image->readRecord(stream);
    if (!read || !image->hasImage()
        || image->getSize() != KGraphicSize(TapePreview::kThumbnailWidth, TapePreview::kThumbnailHeight))
        return KImagePtr();
    return image;
}

bool readWholeFile(const KString& path, std::vector<uint8_t>& bytes)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    if (!in)
        return false;
    in.seekg(0, std::ios::end);
    std::streamoff size = in.tellg();
    if (size < std::streamoff(kHeaderSize) || size_t(size) > kLargestFile)
        return false;
    in.seekg(0);
    bytes.resize(size_t(size));
    return bool(in.read(reinterpret_cast<char*>(bytes.data()), size));
}

} // namespace

uint64_t TapePreview::digestOf(Tape& tape)
{
    // Writing marks nothing on the tape but its flags, kept as they were.
    KFlagSet flagsBefore = tape.getFlags();
    KFile stream;
    stream.setMode(KFileModeMemory);
    KClassWriter::writeObject(stream, &tape);
    tape.getFlags() = flagsBefore;
    const auto* bytes = static_cast<const uint8_t*>(stream.getMemoryData());
    return fnv1a(bytes, bytes ? size_t(stream.getMemorySize()) : 0);
}

bool TapePreview::saveThumbnails(const KString& path)
{
    if (!tape)
        return false;
    int32_t count = tape->getCount();
    std::string out(kMagic, sizeof kMagic);
    putLong(out, kVersion);
    putLong(out, uint32_t(count));
    putLong(out, uint32_t(kThumbnailWidth) << 16 | uint32_t(kThumbnailHeight));
    uint64_t digest = digestOf(*tape);
    putLong(out, uint32_t(digest >> 32));
    putLong(out, uint32_t(digest));
    std::string record;
    for (int32_t p = 1; p <= count; ++p) {
        KImage* image = getThumbnail(p);
        if (!image || !imageRecord(*image, record))
            return false;
        putLong(out, uint32_t(record.size()));
        out += record;
    }
    std::string temporary = std::string(path.c_str()) + ".part";
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        if (!file || !file.write(out.data(), std::streamsize(out.size())) || !file.flush()) {
            ::unlink(temporary.c_str());
            return false;
        }
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}

bool TapePreview::loadThumbnails(const KString& path)
{
    std::vector<uint8_t> bytes;
    if (!tape || !readWholeFile(path, bytes))
        return false;
    const uint8_t* head = bytes.data();
    int32_t count = tape->getCount();
    uint64_t digest = uint64_t(getLong(head + 16)) << 32 | getLong(head + 20);
    if (std::memcmp(head, kMagic, 4) != 0 || getLong(head + 4) != kVersion || getLong(head + 8) != uint32_t(count)
        || getLong(head + 12) != (uint32_t(kThumbnailWidth) << 16 | uint32_t(kThumbnailHeight))
        || digest != digestOf(*tape))
        return false;
    std::vector<KImagePtr> read(size_t(count) + 1);
    size_t offset = kHeaderSize;
    for (int32_t p = 1; p <= count; ++p) {
        if (bytes.size() - offset < 4)
            return false;
        uint32_t length = getLong(bytes.data() + offset);
        offset += 4;
        if (length == 0 || length > kLargestRecord || bytes.size() - offset < length)
            return false;
        read[size_t(p)] = readImage(bytes.data() + offset, length);
        if (!read[size_t(p)])
            return false;
        offset += length;
    }
    thumbnails = std::move(read);
    for (int32_t i = 0; i < count; ++i) {
        if (TapeObject* element = tape->getAt(i))
            element->setPreviewValid(true);
    }
    // The work page does not hold the page up to any of them.
    lastDone = -1;
    requestUpdate();
    return true;
}
