#include "windowing/KDialogHandler.h"

#include "graphics/KColor.h"
#include "kernel/KClass.h"
#include "kernel/KDirectory.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KPath.h"
#include "kernel/KVolume.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"

namespace {

KDialogHandler* gDialogHandler = nullptr;

KPath pathOf(const std::string& text) { return KPath(KString(text.c_str()), KPath::LinuxPlatform); }

bool hasExtension(const std::string& path)
{
    size_t slash = path.rfind('/');
    size_t dot = path.rfind('.');
    return dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
}

} // namespace

K_DEFINE_CLASS(KDialogHandler, KThing)

KDialogHandler::KDialogHandler() { gDialogHandler = this; }

KDialogHandler::~KDialogHandler()
{
    if (gDialogHandler == this)
        gDialogHandler = nullptr;
}

KDialogHandler* KDialogHandler::current() { return gDialogHandler; }

bool KDialogHandler::makeFilter(KFileTypeID type, KNativeFileFilter& filter)
{
    KFileType* known = nullptr;
    if (type == 0 || !KFileTypeHandler::hasAssociation(type, &known) || !known)
        return false;
    KString name = known->getDescription() + " (*." + known->getExtension() + ")";
    filter.name = name.c_str();
    filter.extensions = { known->getExtension().c_str() };
    return true;
}

// The chooser starts in the folder of the reference, proposing its name.
void KDialogHandler::startFrom(const KFileReference& file, KNativeChooserRequest& request)
{
    const KPath& path = file.getPath();
    if (path.isEmpty())
        return;
    if (path.getFolderCount() > 0)
        request.folder = path.getParent().getNativeText().c_str();
    KString name;
    path.getObjectName(name);
    request.name = name.c_str();
}

bool KDialogHandler::doOpenDialog(KFileReference& file, const KString& title, KFileTypeID type)
{
    std::vector<KFileTypeID> types;
    if (type != 0)
        types.push_back(type);
    return doOpenDialog(file, title, types);
}

bool KDialogHandler::doOpenDialog(KFileReference& file, const KString& title, const std::vector<KFileTypeID>& types)
{
    KNativeChooserRequest request;
    request.mode = KNativeChooserRequest::Open;
    request.title = title.c_str();
    startFrom(file, request);
    request.name.clear();
    for (KFileTypeID type : types) {
        KNativeFileFilter filter;
        if (makeFilter(type, filter))
            request.filters.push_back(filter);
    }
    std::string chosen;
    if (!KNativeLayer::get().chooseFile(request, chosen) || chosen.empty())
        return false;
    file.setPath(pathOf(chosen));
    return true;
}

bool KDialogHandler::doSaveDialog(KFileReference& file, const KString& title, KFileTypeID type)
{
    KNativeChooserRequest request;
    request.mode = KNativeChooserRequest::Save;
    request.title = title.c_str();
    startFrom(file, request);
    KNativeFileFilter filter;
    bool typed = makeFilter(type, filter);
    if (typed)
        request.filters.push_back(filter);
    std::string chosen;
    if (!KNativeLayer::get().chooseFile(request, chosen) || chosen.empty())
        return false;
    if (typed && !hasExtension(chosen)) {
        chosen += '.';
        chosen += KString(filter.extensions.front().c_str()).getLower().c_str();
    }
    file.setPath(pathOf(chosen));
    return true;
}

bool KDialogHandler::doSelectDirectoryDialog(KDirectory& directory, const KString& title)
{
    KNativeChooserRequest request;
    request.mode = KNativeChooserRequest::Folder;
    request.title = title.c_str();
    if (!directory.getPath().isEmpty())
        request.folder = directory.getNativeText().c_str();
    std::string chosen;
    if (!KNativeLayer::get().chooseFile(request, chosen) || chosen.empty())
        return false;
    if (chosen.back() != '/')
        chosen += '/';
    directory.setPath(pathOf(chosen));
    return true;
}

bool KDialogHandler::doSelectVolumeDialog(KVolume&)
{
    KErrorHandler::notice("Not Yet Implemented!");
    return false;
}

bool KDialogHandler::doColorDialog(KColor& colour)
{
    KNativeColour chosen { colour.getRed(), colour.getGreen(), colour.getBlue() };
    if (!KNativeLayer::get().chooseColour(kTranslate("Color").c_str(), chosen))
        return false;
    colour.set(chosen.red, chosen.green, chosen.blue);
    return true;
}
