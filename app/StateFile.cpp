#include "app/StateFile.h"
#include "app/StylusPreviews.h"

#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "app/ToolPalette.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KFileReference.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KSpriteSystem.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "windowing/KControl.h"
#include "windowing/KControlsLayer.h"
#include "windowing/KCursorManager.h"
#include "windowing/KDialog.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KWindowManager.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

void describeBounds(KJsonWriter& out, const KGraphicRectangle& r)
{
    out.key("bounds");
    out.beginObject();
    out.member("x", int32_t(r.x));
    out.member("y", int32_t(r.y));
    out.member("width", int32_t(r.width));
    out.member("height", int32_t(r.height));
    out.endObject();
}

const char* kindOf(KWindow& window)
{
    if (dynamic_cast<StylusWindow*>(&window))
        return "main";
    if (dynamic_cast<KDialog*>(&window))
        return "dialog";
    if (window.getTier() == KWindow::PaletteTier)
        return "palette";
    return "window";
}

// What a script needs to work a dialog as a user would: each control's
// kind, text and place in the window.
void describeControls(KJsonWriter& out, KWindow& window)
{
    out.key("controls");
    out.beginArray();
    if (KControlsLayer* layer = window.getControlsLayer()) {
        for (const KControlPtr& control : layer->getControls()) {
            out.beginObject();
            control->describe(out);
            out.endObject();
        }
    }
    out.endArray();
}

void describeWindows(KJsonWriter& out)
{
    out.key("windows");
    out.beginArray();
    if (KWindowManager* manager = KWindowManager::current()) {
        for (const KWindowPtr& held : manager->getWindows()) {
            KWindow* window = held.get();
            if (!window || !window->isOpen())
                continue;
            out.beginObject();
            out.member("title", window->getTitle());
            out.member("kind", kindOf(*window));
            describeBounds(out, window->getClientBounds());
            out.member("visible", window->isVisible());
            if (dynamic_cast<KDialog*>(window))
                describeControls(out, *window);
            out.endObject();
        }
    }
    out.endArray();
}

void describeProject(KJsonWriter& out, StylusApplication& application)
{
    StylusProject* project = application.getProject();
    Tape* tape = project ? project->getTape() : nullptr;
    out.key("project");
    out.beginObject();
    out.key("file");
    if (project && project->hasFile())
        out.value(project->getFile()->getNativeText());
    else
        out.nullValue();
    out.member("elements", tape ? tape->getCount() : 0);
    out.member("position", tape ? tape->getPosition() : 0);
    out.member("playState", tape ? int32_t(tape->getPlayState()) : 0);
    out.member("changed", tape ? tape->isModified() : false);
    out.endObject();
}

void describePreviews(KJsonWriter& out)
{
    StylusPreviews* previews = StylusPreviews::current();
    out.key("previews");
    out.beginObject();
    out.member("state", previews ? previews->getPreview().getState() : -1);
    out.member("fromFile", previews ? previews->wereLoadedFromFile() : false);
    out.member("elementsDrawn", previews ? previews->getPreview().getElementsDrawn() : int64_t(0));
    out.endObject();
}

void describeBrush(KJsonWriter& out)
{
    ToolPalette* palette = ToolPalette::current();
    out.key("brush");
    out.beginObject();
    out.member("size", palette ? int32_t(palette->getBrushSize()) : 0);
    out.member("button", palette ? palette->getSelectedButton() : -1);
    out.member("paletteFull", palette ? palette->isFull() : false);
    out.member("paletteScale", palette ? palette->getScale() : 1.0);
    KColor colour = palette ? palette->getBrushColor() : KColor();
    out.key("colour");
    out.beginArray();
    out.value(int32_t(colour.getRed() >> 8));
    out.value(int32_t(colour.getGreen() >> 8));
    out.value(int32_t(colour.getBlue() >> 8));
    out.endArray();
    out.endObject();
}

// The menus as the user would find them on opening each one now.
void describeMenus(KJsonWriter& out, StylusApplication& application)
{
    StylusMenuBar* bar = application.getStylusMenuBar();
    out.key("menuBar");
    if (!bar) {
        out.nullValue();
        return;
    }
    bar->update();
    out.beginObject();
    out.member("shown", bar->isShown());
    out.key("menus");
    bar->describe(out);
    out.endObject();
}

} // namespace

StateFile::StateFile()
{
    if (const char* value = std::getenv("TALELOOM_STATE_FILE"))
        path = value;
}

void StateFile::install(StylusApplication&)
{
    if (path.empty())
        return;
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->watchStateRequest(&onRequest);
}

void StateFile::onRequest(int)
{
    if (StylusApplication* application = StylusApplication::current())
        application->writeStateFile();
}

std::string StateFile::describe(StylusApplication& application)
{
    StylusWindow* window = StylusWindow::current();
    KJsonWriter out;
    out.beginObject();
    out.member("windowMode", window ? int32_t(window->getWindowMode()) : 0);
    out.member("editMode", window ? int32_t(window->getEditMode()) : 0);
    out.member("fullScreen", application.isFullScreen());
    describeWindows(out);
    describeProject(out, application);
    describeBrush(out);
    describePreviews(out);
    out.member("highlightShown", window ? window->isHighlightShown() : false);
    KCursorManager* cursors = KCursorManager::current();
    out.member("cursorVisible", !(cursors && cursors->isCursorHidden()));
    describeMenus(out, application);
    out.endObject();
    return out.getText();
}

bool StateFile::write(StylusApplication& application)
{
    if (path.empty())
        return false;
    std::string temporary = path + ".part";
    {
        std::ofstream out(temporary, std::ios::trunc);
        out << describe(application) << '\n';
        if (!out)
            return false;
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0)
        return false;
    StylusWindow* window = StylusWindow::current();
    if (window && window->hasSpriteSystem()) {
        if (KImage* shown = window->getSpriteSystem().getSpriteSystem().getOffscreen())
            shown->writeToPath(KTextCodec::fromUtf8(path + ".png"));
    }
    return true;
}
