#include "app/OldDocumentOpening.h"

#include "app/NewProjectDialog.h"
#include "app/PlatformQuestionDialog.h"
#include "app/UiText.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "project/legacy/OldDocument.h"
#include "project/legacy/ZFile.h"
#include "windowing/KAlert.h"
#include "windowing/KBusyCursor.h"

#include <filesystem>

namespace OldDocumentOpening {

namespace {

std::string nativePath(const KFileReference& file) { return KTextCodec::toUtf8(file.getNativeText()); }

// The media the old document named that were not found.
void tellMissing(const OldDocumentReport& report)
{
    if (report.missing.empty() && report.unreadable.empty())
        return;
    std::string names;
    for (const auto* list : { &report.missing, &report.unreadable }) {
        for (const std::string& name : *list)
            names += (names.empty() ? "" : ", ") + name;
    }
    alert(uiText("Convert Old TaleLoom Document"),
          uiText("These media files of the old document could not be found or read: %1", KTextCodec::fromUtf8(names)));
}

} // namespace

bool isOldDocument(const KFileReference& file) { return OldDocument::isOldDocument(nativePath(file)); }

bool convert(const KFileReference& old, KFileReference& converted)
{
    std::vector<uint8_t> bytes;
    if (!ZFile::readFile(nativePath(old), bytes) || !OldDocument::looksOld(bytes)) {
        alert(uiText("Error while reading file"), uiText("This file is not a TaleLoom Document File!"));
        return false;
    }
    if (askYesNo(uiText("Old TaleLoom Document"),
                 uiText("This is an old TaleLoom document file and needs to be converted. Do you want to proceed?"))
        != 2)
        return false;
    NewProjectDialog::Answer answer;
    std::string stem = std::filesystem::path(nativePath(old)).stem().string();
    if (!NewProjectDialog::ask(answer, KTextCodec::fromUtf8(stem), false))
        return false;

    OldDocument::Request request;
    request.oldPath = nativePath(old);
    request.platform = PlatformQuestionDialog::ask();
    request.folder = KTextCodec::toUtf8(answer.folder.getNativeText());
    request.name = KTextCodec::toUtf8(answer.name);
    OldDocumentReport report;
    bool done;
    {
        KBusyCursor busy;
        done = OldDocument::convert(request, report);
    }
    if (!done) {
        std::string reason = report.failure + (report.location.empty() ? "" : " (" + report.location + ")");
        alert(uiText("Convert Old TaleLoom Document"),
              uiText("The old document could not be converted: %1", KTextCodec::fromUtf8(reason)));
        return false;
    }
    tellMissing(report);
    converted = KFileReference(KPath(KTextCodec::fromUtf8(report.document), KPath::kHostPlatform));
    return true;
}

} // namespace OldDocumentOpening
