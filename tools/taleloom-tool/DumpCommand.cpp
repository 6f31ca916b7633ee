#include "tools/taleloom-tool/DumpCommand.h"

#include "kernel/KClass.h"
#include "kernel/KDocument.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KNamedBag.h"
#include "kernel/KTextCodec.h"
#include "kernel/KUnknownObject.h"
#include "tools/taleloom-tool/FrameTree.h"
#include "tools/taleloom-tool/MediaFileDump.h"

#include <ostream>

namespace {

KFileReference referenceOf(const std::string& path)
{
    return KFileReference(KPath(KTextCodec::fromUtf8(path), KPath::LinuxPlatform));
}

std::string errorText(int32_t code)
{
    return std::string(KErrorHandler::textOf(code)) + " (code " + std::to_string(code) + ")";
}

// The head and the class id after it, read without trusting anything else:
// the magic is taken from the file, so that any kind of document loads.
bool readHead(const KFileReference& reference, const std::string& path, int32_t& magic, std::string& reason)
{
    KFile file(reference);
    file.open();
    if (!file.isOpen()) {
        reason = path + ": cannot open: " + errorText(file.getError() ? file.getError() : KError::CouldNotOpenFile);
        return false;
    }
    magic = file.readLong();
    file.readLong();
    int32_t bodyClass = file.readLong();
    int32_t error = file.getError();
    file.close();
    if (error == KError::EndOfFile) {
        reason = path + ": not a document: too short for a document head";
        return false;
    }
    if (error) {
        reason = path + ": cannot read: " + errorText(error);
        return false;
    }
    if (bodyClass != KNamedBag::classRecord->getClassID()) {
        reason = path + ": not a document: no named bag after the 8-byte head";
        return false;
    }
    return true;
}

bool readBytes(const std::string& path, std::vector<uint8_t>& bytes, std::string& reason)
{
    KFile file(referenceOf(path));
    file.setMode(KFileModeReadBuffered);
    file.open();
    int32_t size = file.isOpen() ? file.getSize() : 0;
    bytes.assign(size_t(size), 0);
    if (file.isOpen() && size > 0)
        file.read(bytes.data(), size);
    int32_t error = file.isOpen() ? file.getError() : (file.getError() ? file.getError() : KError::CouldNotOpenFile);
    file.close();
    if (error) {
        reason = path + ": cannot read: " + errorText(error);
        return false;
    }
    return true;
}

int runDump(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    bool sections = false;
    std::string path;
    for (const std::string& argument : arguments) {
        if (argument == "--sections" && !sections)
            sections = true;
        else if (path.empty() && !argument.empty() && argument[0] != '-')
            path = argument;
        else
            return toolUsageError(dumpCommand(), err);
    }
    if (path.empty())
        return toolUsageError(dumpCommand(), err);

    std::string text;
    std::string reason;
    bool done = false;
    if (sections) {
        std::vector<uint8_t> bytes;
        done = readBytes(path, bytes, reason) && describeFrameTree(bytes, text, reason);
        if (!done && !reason.empty() && reason.find(path) != 0)
            reason = path + ": " + reason;
    } else {
        switch (detectMediaFile(path)) {
        case MediaFileKind::SpeechExceptions:
            done = dumpSpeechExceptionsJson(path, text, reason);
            break;
        case MediaFileKind::SoundHilite:
            done = dumpSoundHiliteJson(path, text, reason);
            break;
        case MediaFileKind::None:
            done = dumpDocumentJson(path, text, reason);
            break;
        }
    }
    // What could be read is shown even when the file turns out damaged.
    out << text;
    if (!done)
        return toolInputError(reason, err);
    return kToolSucceeded;
}

} // namespace

ToolCommand dumpCommand() { return { "dump", "[--sections] FILE", &runDump }; }

bool dumpDocumentJson(const std::string& path, std::string& json, std::string& reason)
{
    json.clear();
    KFileReference reference = referenceOf(path);
    int32_t magic = 0;
    if (!readHead(reference, path, magic, reason))
        return false;

    KDocument document;
    document.setFile(reference);
    document.setMagic(magic);
    document.setUseMemoryBuffer(true);
    bool loaded = false;
    {
        // Objects of unknown classes stay visible with their class ids.
        KUnknownObject::KeepScope keepUnknown;
        loaded = document.load();
    }
    if (!loaded) {
        reason = path + ": damaged document: " + errorText(document.getFileError());
        return false;
    }
    KJsonWriter writer;
    writer.beginObject();
    document.describe(writer);
    writer.endObject();
    json = writer.getText() + "\n";
    return true;
}
