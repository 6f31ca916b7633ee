#include "app/ProjectFiles.h"
#include "app/PlayerMode.h"

#include "app/StylusApplication.h"
#include "app/UiText.h"
#include "app/actors/ActorLoading.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileSystem.h"
#include "kernel/KPath.h"
#include "kernel/KStringBag.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapeMediaImport.h"
#include "windowing/KAlert.h"
#include "windowing/KApplication.h"
#include "windowing/KNativeLayer.h"

#include <cctype>
#include <string>

namespace {

bool ensureFolder(const KDirectory& folder)
{
    KDirectory made(folder.getPath());
    if (made.doesExist())
        return true;
    if (made.create() && made.doesExist())
        return true;
    alert(uiText("TaleLoom"), uiText("The folder \"%1\" could not be created.", folder.getNativeText()));
    return false;
}

void copyActorFiles(Tape& tape, KDirectory* from, const KDirectory& to)
{
    if (!from)
        return;
    KNamedBag& actors = tape.getActors();
    for (int32_t i = 0; i < actors.getSize(); ++i) {
        KString* name = actors.getKeyAt(i);
        if (!name)
            continue;
        KFileReference source = actorFileIn(*from, *name);
        KFileReference target = actorFileIn(to, *name);
        if (source.doesExist() && !target.doesExist())
            source.copy(to);
    }
}

} // namespace

KDirectory documentsFolder()
{
    if (auto* application = dynamic_cast<StylusApplication*>(KApplication::current()))
        return application->getDocumentFolder();
    return KFileSystem::get().getDocumentsDirectory();
}

bool makeProjectFolder(const KDirectory& folder, const KString& name, KFileReference& file)
{
    KDirectory projectFolder(folder.getPath().getChildFolder(name));
    if (!ensureFolder(projectFolder))
        return false;
    for (const char* child : { "Media", "Actors" }) {
        if (!ensureFolder(KDirectory(projectFolder.getPath().getChildFolder(child))))
            return false;
    }
    file = KFileReference(projectFolder.getPath().getChildFile(name + ".TPD"));
    return true;
}

void copyProjectFilesTo(StylusProject& project, const KFileReference& newFile)
{
    Tape* tape = project.getTape();
    if (!tape)
        return;
    KPath folder = newFile.getPath().getParent();
    KDirectory media(folder.getChildFolder("Media"));
    KDirectory actors(folder.getChildFolder("Actors"));
    KDirectory nowhere;
    KDirectory* from = project.getMediaDirectory();
    tape->collectMedia(from ? *from : nowhere, media);
    copyActorFiles(*tape, project.getActorsDirectory(), actors);
}

void copyProjectFiles(StylusProject& read, StylusProject& into, Tape& readTape)
{
    KDirectory* from = read.getMediaDirectory();
    KDirectory* to = into.getMediaDirectory();
    if (from && to) {
        KStringBagPtr names = readTape.getMediaNames();
        for (int32_t i = 0; i < names->getSize(); ++i) {
            KString* name = names->getStringAt(i);
            if (!name)
                continue;
            KFileReference source(from->getPath().getChildFile(*name));
            KFileReference imported;
            if (source.doesExist() && importMediaFile(source, *to, imported) && imported.getObjectName() != *name)
                readTape.replaceMedia(source, imported);
        }
    }
    if (into.getActorsDirectory())
        copyActorFiles(readTape, read.getActorsDirectory(), *into.getActorsDirectory());
}

KString saveErrorText(const StylusProject& project)
{
    int32_t code = project.getLastSaveError();
    if (code != 0)
        return KString(KErrorHandler::textOf(code));
    return uiText("The project could not be saved.");
}

void rememberRecentFile(const KFileReference& file)
{
    if (PlayerMode::isOn())
        return;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->addRecentFile(KTextCodec::toUtf8(file.getNativeText()).c_str());
}
