// The actor in the class stream and in its own document file.

#include "app/actors/Actor.h"
#include "app/actors/ActorSequence.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDirectory.h"
#include "kernel/KDocument.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "tape/TapeHost.h"

namespace {

constexpr int32_t kMainSection = 1;
constexpr int32_t kPageSection = 2;

// What a stream held, gathered before any of it replaces the actor's own.
struct ReadActor {
    KBag sequences;
    KGraphicRectangle bounds;
    int32_t pageWidth = Actor::kDefaultPageWidth;
    int32_t pageHeight = Actor::kDefaultPageHeight;
};

} // namespace

// Before writing the bounds are made right, since a reader trusts them.
void Actor::writeToFile(KFile& file, int32_t)
{
    recomputeBounds();
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(kMainSection);
    sequences.writeToFile(file, 1);
    bounds.writeToFile(file, 1);
    writer.newSection(kPageSection);
    file.writeLong(pageWidth);
    file.writeLong(pageHeight);
    writer.end();
}

// The sections may come in any order and unknown ones are skipped; a
// stream without the page section was painted for the default page.
void Actor::readFromFile(KFile& file)
{
    ReadActor read;
    auto readMain = [&](int32_t) {
        read.sequences.readFromFile(file);
        if (!file.getError())
            read.bounds.readFromFile(file);
    };
    auto readPage = [&](int32_t) {
        read.pageWidth = file.readLong();
        read.pageHeight = file.readLong();
    };
    KClassReader::readSections(
        file, classRecord, { { kMainSection, readMain }, { kPageSection, readPage, int32_t(2 * sizeof(int32_t)) } });

    reset();
    sequences.clear();
    for (int32_t i = 0; !read.sequences.getIsDirect() && i < read.sequences.getSize(); ++i) {
        if (auto* sequence = dynamic_cast<ActorSequence*>(read.sequences.getAt(i)))
            sequences.add(*sequence);
    }
    bounds = read.bounds;
    pageWidth = read.pageWidth;
    pageHeight = read.pageHeight;
    adoptFrameTapes();
}

// The entry's movements move over: the entry goes with its document.
void Actor::takeContentsOf(Actor& other)
{
    reset();
    sequences.clear();
    for (int32_t i = 0; i < other.sequences.getSize(); ++i) {
        if (ActorSequence* sequence = other.getSequenceAt(i))
            sequences.add(*sequence);
    }
    other.sequences.clear();
    bounds = other.bounds;
    pageWidth = other.pageWidth;
    pageHeight = other.pageHeight;
    adoptFrameTapes();
}

bool Actor::save(KFileReference& file)
{
    TapeBusyCursor busy;
    KDocumentPtr document(new KDocument());
    KFileReferencePtr target(new KFileReference(file));
    document->setFile(*target);
    document->setMagic(kFileMagic);
    document->setVersion(kFileVersion);
    document->add(KString(kEntryName), *this);
    bool written = document->save();
    document->clear();
    if (written) {
        fileName = file.getObjectName();
        actorFlags.add(HasFile);
    }
    return written;
}

bool Actor::open(KFileReference& file, bool& checkMedia)
{
    TapeBusyCursor busy;
    if (!file.doesExist())
        return false;
    KDocumentPtr document(new KDocument());
    KFileReferencePtr source(new KFileReference(file));
    document->setFile(*source);
    document->setMagic(kFileMagic);
    document->setVersion(kFileVersion);
    bool loaded = document->load();
    auto* entry = loaded ? dynamic_cast<Actor*>(document->findNamedObject(KString(kEntryName))) : nullptr;
    if (!entry) {
        TapeHost::get().alert(tapeTranslate("Error while reading file"),
                              tapeTranslate("This file is not an Actor Document File!"));
        return false;
    }
    ActorPtr keep(entry);
    document->clear();
    takeContentsOf(*entry);
    fileName = file.getObjectName();
    actorFlags.add(HasFile);
    if (checkMedia) {
        KDirectoryPtr folder(new KDirectory(file.getDirectory()));
        if (findMissingMedia(*folder, nullptr))
            checkMedia = false;
    }
    return true;
}
