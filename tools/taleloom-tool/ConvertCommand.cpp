#include "tools/taleloom-tool/ConvertCommand.h"

#include "kernel/KJsonWriter.h"
#include "kernel/KString.h"
#include "project/legacy/OldDocument.h"

#include <ostream>

namespace {

bool parseRequest(const std::vector<std::string>& arguments, OldDocument::Request& request)
{
    bool platformGiven = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        bool hasValue = i + 1 < arguments.size();
        if (argument == "--platform" && hasValue && !platformGiven) {
            platformGiven = true;
            const std::string& platform = arguments[++i];
            if (platform == "mac")
                request.platform = KString::Macintosh;
            else if (platform == "windows")
                request.platform = KString::Windows;
            else
                return false;
        } else if (argument == "--folder" && hasValue && request.folder.empty()) {
            request.folder = arguments[++i];
        } else if (argument == "--name" && hasValue && request.name.empty()) {
            request.name = arguments[++i];
        } else if (request.oldPath.empty() && !argument.empty() && argument[0] != '-') {
            request.oldPath = argument;
        } else {
            return false;
        }
    }
    bool plainName = request.name.find('/') == std::string::npos && request.name != "." && request.name != "..";
    return platformGiven && !request.oldPath.empty() && !request.folder.empty() && !request.name.empty() && plainName;
}

void list(KJsonWriter& writer, const char* name, const std::vector<std::string>& names)
{
    writer.key(name);
    writer.beginArray();
    for (const std::string& entry : names)
        writer.value(entry);
    writer.endArray();
}

void printSummary(std::ostream& out, const OldDocumentReport& report)
{
    KJsonWriter writer;
    writer.beginObject();
    writer.member("document", report.document);
    writer.key("elements");
    writer.beginObject();
    for (const auto& [kind, count] : report.elements)
        writer.member(kind, count);
    writer.endObject();
    writer.member("mediaCopied", report.mediaCopied);
    list(writer, "mediaMissing", report.missing);
    list(writer, "mediaUnreadable", report.unreadable);
    writer.member("recordsSkipped", report.recordsSkipped);
    writer.endObject();
    out << writer.getText() << '\n';
}

int runConvert(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    OldDocument::Request request;
    if (!parseRequest(arguments, request))
        return toolUsageError(convertCommand(), err);
    OldDocumentReport report;
    if (!OldDocument::convert(request, report)) {
        std::string where = report.location.empty() ? std::string() : " (" + report.location + ")";
        return toolInputError(request.oldPath + ": " + report.failure + where, err);
    }
    printSummary(out, report);
    return kToolSucceeded;
}

} // namespace

ToolCommand convertCommand()
{
    return { "convert", "OLD.STT --platform mac|windows --folder DIR --name N", &runConvert };
}
