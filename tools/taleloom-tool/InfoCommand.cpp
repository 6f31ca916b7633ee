#include "tools/taleloom-tool/InfoCommand.h"

#include "kernel/KJsonWriter.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "tape/StylusText.h"
#include "tape/TapeGraphicObject.h"
#include "tape/TapeObject.h"
#include "tools/taleloom-tool/ToolProject.h"

#include <algorithm>

#include <ostream>

namespace {

// A text tells what it says, where, and how it is read; its lines are
// joined by a line feed.
void writeText(KJsonWriter& writer, const StylusText& text)
{
    std::string plain = KTextCodec::toUtf8(text.getPlainText());
    std::replace(plain.begin(), plain.end(), KTextBlock::kLineBreak, '\n');
    writer.member("text", std::string_view(plain));
    tapeDescribeRectangle(writer, "bounds", text.getBounds());
    writer.member("speaks", text.getSpeaks());
    writer.member("usesRecording", text.getUsesRecording());
    writer.member("marksWords", text.getMarksWords());
    writer.member("waitForEnd", text.getWaitForEnd());
}

void writeElement(KJsonWriter& writer, int32_t index, const TapeObject& element)
{
    writer.beginObject();
    writer.member("index", index);
    writer.member("type", element.getType());
    writer.member("kind", toolElementKind(element.getType()));
    writer.member("active", element.isActive());
    writer.member("bookmark", element.getBookmark());
    if (const auto* text = dynamic_cast<const StylusText*>(&element))
        writeText(writer, *text);
    writer.endObject();
}

void writeTape(KJsonWriter& writer, const Tape& tape)
{
    writer.member("width", int32_t(tape.getPageSize().getWidth()));
    writer.member("height", int32_t(tape.getPageSize().getHeight()));
    writer.member("position", tape.getPosition());
    writer.member("elementCount", tape.getCount());
    writer.key("elements");
    writer.beginArray();
    for (int32_t i = 0; i < tape.getCount(); ++i)
        writeElement(writer, i, *tape.getAt(i));
    writer.endArray();
}

int runInfo(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    if (arguments.size() != 1 || arguments[0].empty() || arguments[0][0] == '-')
        return toolUsageError(infoCommand(), err);
    std::string json;
    std::string reason;
    std::vector<std::string> warnings;
    bool done = projectInfoJson(arguments[0], json, reason, warnings);
    for (const std::string& warning : warnings)
        err << "taleloom-tool: warning: " << warning << '\n';
    if (!done)
        return toolInputError(reason, err);
    out << json;
    return kToolSucceeded;
}

} // namespace

ToolCommand infoCommand() { return { "info", "PROJECT.TPD", &runInfo }; }

bool projectInfoJson(const std::string& path, std::string& json, std::string& reason,
                     std::vector<std::string>& warnings)
{
    json.clear();
    StylusProjectPtr project(new StylusProject());
    if (!loadToolProject(path, *project, reason, warnings))
        return false;
    KJsonWriter writer;
    writer.beginObject();
    writeTape(writer, *project->getTape());
    writer.endObject();
    json = writer.getText() + "\n";
    return true;
}
