#pragma once

#include "graphics/KGraphicsForward.h"
#include "kernel/KFileType.h"
#include "kernel/KThingPtr.h"
#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

#include <vector>

// The native choosers: open, save, folder and colour. Each answers false
// when the user cancels, and then leaves its argument as it was. A new
// instance replaces the previous one.
class KDialogHandler : public KThing {
    K_DECLARE_CLASS(KDialogHandler)
public:
    KDialogHandler();
    ~KDialogHandler() override;

    static KDialogHandler* current();

    // A type of 0 offers every file.
    virtual bool doOpenDialog(KFileReference& file, const KString& title, KFileTypeID type);
    virtual bool doOpenDialog(KFileReference& file, const KString& title, const std::vector<KFileTypeID>& types);
    // A name typed without extension gets the type's.
    virtual bool doSaveDialog(KFileReference& file, const KString& title, KFileTypeID type);
    virtual bool doSelectDirectoryDialog(KDirectory& directory, const KString& title);
    // There is no native form of it.
    virtual bool doSelectVolumeDialog(KVolume& volume);
    virtual bool doColorDialog(KColor& colour);

    // The filter a type gives: "Name (*.EXT)" and its extension; false for
    // a type that is not known.
    static bool makeFilter(KFileTypeID type, KNativeFileFilter& filter);

private:
    static void startFrom(const KFileReference& file, KNativeChooserRequest& request);
};
