#include "tools/taleloom-tool/PaletteCommand.h"

#include "app/StylusApplication.h"
#include "app/ToolPalette.h"
#include "graphics/KImage.h"
#include "kernel/KFileReference.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindowEvent.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <ostream>

namespace {

const char* const kUsage = "write-default OUT.SCP | read FILE.SCP | render --state short|full [--palette F.SCP] "
                           "[--size N] [--scale 1|1.5|2] [--mode M] -o PALETTE.png";

KFileReference fileAt(const std::string& path)
{
    return KFileReference(KPath(KString(path.c_str()), KPath::kHostPlatform));
}

bool parseNumber(const std::string& text, int32_t smallest, int32_t largest, int32_t& value)
{
    if (text.empty() || text.size() > 4
        || !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); }))
        return false;
    int32_t number = std::stoi(text);
    if (number < smallest || number > largest)
        return false;
    value = number;
    return true;
}

bool parseScale(const std::string& text, double& scale)
{
    for (const char* offered : { "1", "1.5", "2" }) {
        if (text == offered) {
            scale = std::stod(text);
            return true;
        }
    }
    return false;
}

bool endsWithPng(const std::string& name)
{
    if (name.size() < 5)
        return false;
    std::string extension = name.substr(name.size() - 4);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return extension == ".png";
}

bool parseRender(const std::vector<std::string>& arguments, PaletteRenderRequest& request, std::string& output)
{
    bool stateGiven = false;
    for (size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (i + 1 >= arguments.size())
            return false;
        const std::string& value = arguments[++i];
        if (argument == "--state" && !stateGiven && (value == "short" || value == "full")) {
            stateGiven = true;
            request.full = value == "full";
        } else if (argument == "--palette" && request.palette.empty() && !value.empty()) {
            request.palette = value;
        } else if (argument == "--size") {
            if (!parseNumber(value, ToolPalette::kMinimumBrushSize, ToolPalette::kMaximumBrushSize, request.brushSize))
                return false;
        } else if (argument == "--scale") {
            if (!parseScale(value, request.scale))
                return false;
        } else if (argument == "--mode") {
            if (!parseNumber(value, 0, 4, request.windowMode))
                return false;
        } else if (argument == "-o" && output.empty()) {
            output = value;
        } else {
            return false;
        }
    }
    return stateGiven && endsWithPng(output);
}

// The fake native layer in place of a display, unless one is installed.
class RenderLayer {
public:
    RenderLayer()
    {
        if (KNativeLayer::current())
            return;
        own = std::make_unique<KFakeNativeLayer>();
        KNativeLayer::install(own.get());
    }
    ~RenderLayer()
    {
        if (own)
            KNativeLayer::install(nullptr);
    }
    RenderLayer(const RenderLayer&) = delete;
    RenderLayer& operator=(const RenderLayer&) = delete;

private:
    std::unique_ptr<KFakeNativeLayer> own;
};

// The palette window open for the scope, and closed after.
class OpenPalette {
public:
    OpenPalette()
        : palette(new ToolPalette())
    {
        palette->open(KWindow::OpenMode::Hidden);
    }
    ~OpenPalette() { palette->close(); }
    OpenPalette(const OpenPalette&) = delete;
    OpenPalette& operator=(const OpenPalette&) = delete;

    ToolPalette& get() { return *palette; }

private:
    KPtr<ToolPalette> palette;
};

int runWriteDefault(const std::vector<std::string>& arguments, std::ostream& err)
{
    if (arguments.size() != 2 || arguments[1].empty() || arguments[1][0] == '-')
        return toolUsageError(paletteCommand(), err);
    if (!ColorPaletteFile::save(fileAt(arguments[1]), defaultPaletteColors()))
        return toolInputError(arguments[1] + ": the palette could not be written", err);
    return kToolSucceeded;
}

int runRead(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    if (arguments.size() != 2 || arguments[1].empty() || arguments[1][0] == '-')
        return toolUsageError(paletteCommand(), err);
    ColorPaletteFile::Colors colors;
    bool opened = false;
    ColorPaletteFile::Form form = ColorPaletteFile::load(fileAt(arguments[1]), colors, opened);
    if (!opened)
        return toolInputError(arguments[1] + ": the file cannot be opened", err);
    if (form == ColorPaletteFile::Form::None)
        return toolInputError(arguments[1] + ": This file is not a TaleLoom Colors File!", err);
    out << paletteJson(colors, form);
    return kToolSucceeded;
}

int runRender(const std::vector<std::string>& arguments, std::ostream& err)
{
    PaletteRenderRequest request;
    std::string output;
    if (!parseRender(arguments, request, output))
        return toolUsageError(paletteCommand(), err);
    KImagePtr picture(new KImage());
    std::string reason;
    if (!renderToolPalette(request, *picture, reason))
        return toolInputError(reason, err);
    if (!picture->writeToPath(KString(output.c_str())))
        return toolInputError(output + ": the picture could not be written", err);
    return kToolSucceeded;
}

int runPalette(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    if (arguments.empty())
        return toolUsageError(paletteCommand(), err);
    if (arguments[0] == "write-default")
        return runWriteDefault(arguments, err);
    if (arguments[0] == "read")
        return runRead(arguments, out, err);
    if (arguments[0] == "render")
        return runRender(arguments, err);
    return toolUsageError(paletteCommand(), err);
}

} // namespace

ToolCommand paletteCommand() { return { "palette", kUsage, &runPalette }; }

ColorPaletteFile::Colors defaultPaletteColors()
{
    ColorPaletteFile::Colors colors;
    for (int32_t i = 0; i < ColorPaletteFile::kColorCount; ++i)
        colors.set(i, ToolPalette::defaultButtonColor(i));
    return colors;
}

std::string paletteJson(const ColorPaletteFile::Colors& colors, ColorPaletteFile::Form form)
{
    KJsonWriter writer;
    writer.beginObject();
    writer.member("form", form == ColorPaletteFile::Form::Old ? "old" : "document");
    writer.key("colors");
    writer.beginArray();
    for (int32_t i = 0; i < ColorPaletteFile::kColorCount; ++i) {
        if (!colors.has(i))
            continue;
        const KColor& colour = colors.colors[size_t(i)];
        writer.beginObject();
        writer.member("button", i + 1);
        writer.member("red", int32_t(colour.getRed()));
        writer.member("green", int32_t(colour.getGreen()));
        writer.member("blue", int32_t(colour.getBlue()));
        writer.endObject();
    }
    writer.endArray();
    writer.endObject();
    return writer.getText() + "\n";
}

bool renderToolPalette(const PaletteRenderRequest& request, KImage& picture, std::string& reason)
{
    ColorPaletteFile::Colors colors = defaultPaletteColors();
    if (!request.palette.empty()) {
        bool opened = false;
        ColorPaletteFile::Colors read;
        if (ColorPaletteFile::load(fileAt(request.palette), read, opened) == ColorPaletteFile::Form::None) {
            reason = request.palette + (opened ? ": This file is not a TaleLoom Colors File!" : ": cannot be opened");
            return false;
        }
        for (int32_t i = 0; i < ColorPaletteFile::kColorCount; ++i) {
            if (read.has(i))
                colors.set(i, read.colors[size_t(i)]);
        }
    }
    kRegisterWindowingClasses();
    StylusApplication::registerClasses();
    RenderLayer layer;
    OpenPalette open;
    ToolPalette& palette = open.get();
    palette.applyColors(colors);
    palette.setScale(request.scale);
    palette.showFull(request.full);
    palette.setBrushSize(int16_t(request.brushSize), true);
    if (request.windowMode >= 0)
        palette.updateState(request.windowMode);
    KGraphicRectangle client = palette.getClientBounds();
    KWindowEvent paint(KWindowEvent::Paint, &palette);
    palette.paint(paint);
    picture.setSize(KGraphicSize(client.width, client.height));
    KGraphicRectangle whole(0, 0, client.width, client.height);
    palette.copyTo(picture.getDevice(), whole, whole);
    return picture.hasImage();
}
