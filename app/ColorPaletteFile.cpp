#include "app/ColorPaletteFile.h"

#include "kernel/KClass.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KDocument.h"
#include "kernel/KFile.h"
#include "kernel/KMemory.h"
#include "kernel/KVariable.h"
#include "project/legacy/ZFile.h"

#include <cstring>
#include <string>

namespace {

// The class ids an old colour record may carry in its head. Old ids follow
// the same product rule as today's, over the old stream's class name; the
// colour was written as "KColor" (as today) or under the reader's own name.
// Kept in one table so that a real old file can correct it.
const char* const kOldColourClasses[] = { "KColor", "ZColor" };

bool isOldColourClass(int32_t id)
{
    for (const char* name : kOldColourClasses) {
        if (KClass::computeClassID(name) == id)
            return true;
    }
    return false;
}

int32_t bigEndianLong(const uint8_t* bytes)
{
    return int32_t(uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3]);
}

// A read-buffered file over a copy of the bytes; the file frees the copy.
void openCopy(KFile& file, const uint8_t* bytes, size_t size)
{
    void* block = KMemory::allocate(size + 1, false);
    if (size > 0)
        std::memcpy(block, bytes, size);
    file.setMode(KFileModeReadBuffered);
    file.openFromRAM(block, int32_t(size));
}

// The button a variable's name stands for, or -1.
int32_t indexOfName(const KString* name)
{
    if (!name)
        return -1;
    for (int32_t i = 0; i < ColorPaletteFile::kColorCount; ++i) {
        if (*name == ColorPaletteFile::variableName(i))
            return i;
    }
    return -1;
}

// The colour a document entry holds, or null when it is not a variable of
// tag 7 holding a colour.
const KColor* colourOfEntry(KThing* entry)
{
    auto* variable = dynamic_cast<KVariable*>(entry);
    if (!variable || variable->getType() != KVariable::ObjectType)
        return nullptr;
    return dynamic_cast<const KColor*>(variable->getObject());
}

} // namespace

void ColorPaletteFile::Colors::set(int32_t index, const KColor& colour)
{
    if (index < 0 || index >= kColorCount)
        return;
    colors[size_t(index)] = colour;
    present[size_t(index)] = true;
}

int32_t ColorPaletteFile::Colors::count() const
{
    int32_t found = 0;
    for (bool here : present)
        found += here ? 1 : 0;
    return found;
}

int32_t ColorPaletteFile::magic() { return KDocument::makeMagic("STCP"); }

KString ColorPaletteFile::variableName(int32_t index)
{
    return KString((std::string("Color ") + std::to_string(index + 1)).c_str());
}

KColor ColorPaletteFile::asShown(const KColor& colour) { return KColor::fromNative(colour.getNative()); }

// --- Reading --------------------------------------------------------------------

ColorPaletteFile::Form ColorPaletteFile::decode(const uint8_t* bytes, size_t size, Colors& out)
{
    out = Colors();
    if (!bytes || size < 4 || size > size_t(kLargestFile) || bigEndianLong(bytes) != magic())
        return Form::None;
    if (decodeDocument(bytes, size, out) == Form::Document)
        return Form::Document;
    out = Colors();
    if (decodeOldForm(bytes, size, out) == Form::Old)
        return Form::Old;
    out = Colors();
    return Form::None;
}

// Every entry must be one of the 16 colours, each at most once; a document
// without any is no palette (and may be the old form).
ColorPaletteFile::Form ColorPaletteFile::decodeDocument(const uint8_t* bytes, size_t size, Colors& out)
{
    KFile file;
    openCopy(file, bytes, size);
    KDocumentPtr document(new KDocument());
    document->setMagic(magic());
    bool loaded = document->loadFrom(file);
    file.close();
    if (!loaded || document->getSize() == 0) {
        document->clear();
        return Form::None;
    }
    Colors read;
    bool sound = true;
    for (int32_t i = 0; sound && i < document->getSize(); ++i) {
        int32_t index = indexOfName(document->getKeyAt(i));
        const KColor* colour = colourOfEntry(document->getObjectAt(i));
        sound = index >= 0 && colour && !read.has(index);
        if (sound)
            read.set(index, KColor(colour->getRed(), colour->getGreen(), colour->getBlue()));
    }
    document->clear();
    if (!sound)
        return Form::None;
    out = read;
    return Form::Document;
}

ColorPaletteFile::Form ColorPaletteFile::decodeOldForm(const uint8_t* bytes, size_t size, Colors& out)
{
    if (size != size_t(kOldFormSize))
        return Form::None;
    // The records are read as old documents are, after the magic.
    ZFile file(std::vector<uint8_t>(bytes + 4, bytes + size), KString::Macintosh);
    Colors read;
    for (int32_t i = 0; i < kColorCount; ++i) {
        // The head's second long is the record's version, which changes
        // nothing in three channels.
        int32_t id = file.readLong();
        file.readLong();
        if (!isOldColourClass(id))
            return Form::None;
        uint16_t red = uint16_t(file.readShort());
        uint16_t green = uint16_t(file.readShort());
        uint16_t blue = uint16_t(file.readShort());
        read.set(i, KColor(red, green, blue));
    }
    if (file.failed())
        return Form::None;
    out = read;
    return Form::Old;
}

ColorPaletteFile::Form ColorPaletteFile::read(KFile& file, Colors& out)
{
    out = Colors();
    int32_t left = file.bytesLeft();
    if (file.getError() || left < 0 || left > kLargestFile)
        return Form::None;
    std::vector<uint8_t> bytes(static_cast<size_t>(left));
    if (left > 0 && !file.readBytes(bytes.data(), left))
        return Form::None;
    return decode(bytes.data(), bytes.size(), out);
}

// --- Writing --------------------------------------------------------------------

void ColorPaletteFile::write(KFile& file, const Colors& colors)
{
    KDocumentPtr document(new KDocument());
    document->setMagic(magic());
    document->setVersion(kVersion);
    for (int32_t i = 0; i < kColorCount; ++i) {
        if (!colors.has(i))
            continue;
        KPtr<KColor> colour(new KColor(asShown(colors.colors[size_t(i)])));
        KPtr<KVariable> variable(new KVariable(*colour));
        document->add(variableName(i), *variable);
    }
    document->saveTo(file);
    document->clear();
}

std::vector<uint8_t> ColorPaletteFile::encode(const Colors& colors)
{
    KFile file;
    file.setMode(KFileModeMemory);
    write(file, colors);
    const auto* data = static_cast<const uint8_t*>(file.getMemoryData());
    std::vector<uint8_t> bytes(data, data + file.getMemorySize());
    return bytes;
}

// --- Whole files --------------------------------------------------------------------

ColorPaletteFile::Form ColorPaletteFile::load(const KFileReference& reference, Colors& out, bool& opened)
{
    out = Colors();
    KFile file(reference);
    file.setMode(KFileModeDirect);
    file.open();
    opened = file.isOpen() && !file.getError();
    if (!opened) {
        file.close();
        return Form::None;
    }
    // The size first: a huge file is refused before it is read.
    int32_t size = file.getSize();
    Form form = Form::None;
    if (!file.getError() && size >= 0 && size <= kLargestFile)
        form = read(file, out);
    file.close();
    return form;
}

bool ColorPaletteFile::save(const KFileReference& reference, const Colors& colors)
{
    KFile file(reference);
    file.setMode(KFileModeMemory);
    file.clearError();
    if (!file.beginAtomicWrite())
        return false;
    write(file, colors);
    return file.commitAtomicWrite() && file.getError() == 0;
}
