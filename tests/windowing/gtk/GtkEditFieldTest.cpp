#include "graphics/KFont.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextStyleRun.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KApplication.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/native/KGtkNativeLayer.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

namespace {

class FieldPage : public KWindow {
    K_DECLARE_CLASS(FieldPage)
public:
    FieldPage()
    {
        setTitle("TaleLoom");
        setBounds(KGraphicRectangle(40, 40, 400, 300));
    }
};
K_DEFINE_CLASS(FieldPage, KWindow)

KGtkNativeLayer& gtkLayer() { return static_cast<KGtkNativeLayer&>(KNativeLayer::get()); }

KTextStyle styleOf(const char* family, double size, int32_t face, const KColor& colour)
{
    KFont font(family, size, face);
    font.setStyleFlags(2);
    return KTextStyle(font, colour);
}

// The text and every run of a block, in words.
std::string describe(const KTextBlock& block)
{
    std::string text = std::to_string(block.getAlignment());
    for (int32_t i = 0; i < block.getLineCount(); ++i) {
        const KTextLine& line = *block.getLine(i);
        text += " [" + std::string(line.getText().c_str());
        for (int32_t r = 0; r < line.getStyleRunCount(); ++r) {
            const KTextStyleRun& run = *line.getStyleRun(r);
            text += " " + std::to_string(run.getLength()) + ":" + run.getFont().getName().c_str() + "/"
                    + std::to_string(run.getFont().getSize()) + "/" + std::to_string(run.getFont().getFace()) + "/"
                    + std::to_string(run.getColour().getRed()) + "." + std::to_string(run.getColour().getBlue()) + "/"
                    + std::to_string(run.getFont().getStyleFlags().getValue());
        }
        text += "]";
    }
    return text;
}

// "Café" in bold red Arial, " noir" in italic blue Times, an empty line
// in Courier, then "fin", centred.
KTextBlock mixedBlock()
{
    KTextStyle bold = styleOf("Arial", 30, KFont::Bold, KColor(KColor::Red));
    KTextStyle italic = styleOf("Times New Roman", 14.5, KFont::Italic | KFont::Underline, KColor(KColor::Blue));
    KTextBlock block(KString("Caf\xE9 noir\r\rfin"), bold, KTextBlock::AlignCentre);
    block.setStyle(4, 5, italic);
    block.getLine(1)->setStyle(0, 0, styleOf("Courier New", 20, 0, KColor(KColor::Green)));
    block.setStyle(11, 3, italic);
    return block;
}

class FieldApp : public KApplication {
public:
    void doInit() override
    {
        getMainWindow()->show(true);
        g_timeout_add(50, &FieldApp::turn, this);
    }
    static gboolean turn(gpointer data)
    {
        auto* app = static_cast<FieldApp*>(data);
        if (app->next < app->steps.size() && app->steps[app->next]())
            ++app->next;
        if (app->next < app->steps.size())
            return G_SOURCE_CONTINUE;
        app->requestQuit();
        return G_SOURCE_REMOVE;
    }
    std::vector<std::function<bool()>> steps;
    size_t next = 0;
};

bool gGuardFired = false;

gboolean failAndStop(gpointer)
{
    gGuardFired = true;
    ADD_FAILURE() << "the edit field script did not finish in time";
    if (KApplication* application = KApplication::current())
        application->clearAppFlags(KApplication::Running);
    return G_SOURCE_REMOVE;
}

GtkTextView* viewOf(KEditFieldControl& field)
{
    return GTK_TEXT_VIEW(gtk_bin_get_child(GTK_BIN(gtkLayer().gtkControlOf(field.getNativeControl()))));
}

// A key as GTK hands it to the focused view.
void typeIntoView(KEditFieldControl& field, guint keyval)
{
    GtkWidget* view = GTK_WIDGET(viewOf(field));
    GdkWindow* window = gtk_widget_get_window(view);
    GdkEvent* event = gdk_event_new(GDK_KEY_PRESS);
    event->key.window = GDK_WINDOW(g_object_ref(window));
    event->key.send_event = TRUE;
    event->key.time = GDK_CURRENT_TIME;
    event->key.keyval = keyval;
    GdkSeat* seat = gdk_display_get_default_seat(gdk_window_get_display(window));
    gdk_event_set_device(event, gdk_seat_get_keyboard(seat));
    gtk_widget_event(view, event);
    gdk_event_free(event);
}

TEST(GtkEditFieldTest, StyledTextGoesThroughTheTextViewAndBackWithItsRunsAndTypingKeepsTheStyleBeforeTheCaret)
{
    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    ASSERT_TRUE(layer.hasDisplay()) << "run this test under xvfb-run";
    kRegisterWindowingClasses();
    if (!KClass::hasClass("FieldPage"))
        FieldPage::registerClass();
    guint guard = g_timeout_add(20000, &failAndStop, nullptr);
    {
        KPtr<FieldApp> app(new FieldApp());
        KEditFieldControlPtr field(new KEditFieldControl(1, KWideRectangle(20, 30, 300, 200)));
        KTextBlock block = mixedBlock();
        app->steps = {
            [&] {
                KWindow& window = *app->getMainWindow();
                window.addControl(*field);
                field->setTextBlock(block);
                field->setBackColour(KColor(KColor::Yellow));
                field->setFocus(true);
                return true;
            },
            [&] {
                // A text view drops keys until it has its layout, which it
                // gets when it is realised; a loaded machine may need more
                // than one turn for that.
                GtkWidget* shown = GTK_WIDGET(viewOf(*field));
                return gtk_widget_get_realized(shown) && gtk_widget_get_mapped(shown);
            },
            [&] {
                // Runs, sizes, faces, colours, the é and the empty line's
                // style come back as they went in.
                EXPECT_EQ(describe(field->getTextBlock()), describe(block));
                GtkTextView* view = viewOf(*field);
                EXPECT_EQ(gtk_text_view_get_justification(view), GTK_JUSTIFY_CENTER);
                EXPECT_TRUE(gtk_widget_is_focus(GTK_WIDGET(view)));
                GtkTextIter start, end;
                gtk_text_buffer_get_bounds(gtk_text_view_get_buffer(view), &start, &end);
                gchar* utf8 = gtk_text_buffer_get_text(gtk_text_view_get_buffer(view), &start, &end, FALSE);
                EXPECT_STREQ(utf8, "Caf\xC3\xA9 noir\n\nfin");
                g_free(utf8);
                // Keys typed into the view after "Café" take its style.
                field->setSelection(4, 0);
                typeIntoView(*field, GDK_KEY_s);
                // The program's keys too, after " noir": italic blue.
                field->setSelection(10, 0);
                KKeyEvent key(KKeyEvent::KeyDown, nullptr, '!', 0);
                field->doKeyDown(key);
                // A style chosen with nothing selected goes to what is typed.
                field->setSelection(16, 0);
                field->setFontSize(40);
                KKeyEvent typedE(KKeyEvent::KeyDown, nullptr, 'e', 0);
                field->doKeyDown(typedE);
                // A selection takes a colour; the alignment is the whole text's.
                field->setSelection(0, 3);
                field->setTextColour(KColor(KColor::Green));
                field->setAlignment(KTextBlock::AlignRight);
                return true;
            },
            [&]() -> bool {
                KTextBlock typed = field->getTextBlock();
                EXPECT_EQ(std::string(typed.getPlainText().c_str()), "Caf\xE9s noir!\r\rfine");
                EXPECT_EQ(typed.getAlignment(), KTextBlock::AlignRight);
                const KTextLine& first = *typed.getLine(0);
                EXPECT_EQ(first.getStyleRunCount(), 3);
                if (first.getStyleRunCount() != 3 || typed.getLineCount() != 3)
                    return true;
                EXPECT_EQ(first.getStyleRun(0)->getLength(), 3);
                EXPECT_EQ(first.getStyleRun(0)->getColour().getGreen(), 0xFFFF);
                EXPECT_EQ(first.getStyleRun(1)->getLength(), 2);
                EXPECT_EQ(first.getStyleRun(1)->getFont().getFace(), KFont::Bold);
                EXPECT_EQ(first.getStyleRun(2)->getLength(), 6);
                EXPECT_EQ(first.getStyleRun(2)->getFont().getName(), "Times New Roman");
                EXPECT_EQ(first.getStyleRun(2)->getFont().getStyleFlags().getValue(), 2);
                const KTextLine& last = *typed.getLine(2);
                EXPECT_EQ(last.getStyleRunCount(), 2);
                if (last.getStyleRunCount() != 2)
                    return true;
                EXPECT_EQ(last.getStyleRun(1)->getLength(), 1);
                EXPECT_EQ(last.getStyleRun(1)->getFont().getSize(), 40.0);
                EXPECT_EQ(last.getStyleRun(1)->getFont().getFace(), KFont::Italic | KFont::Underline);
                return true;
            },
        };
        const char* arguments[] = { "taleloom" };
        app->run("FieldPage", 1, arguments);
        field.clear();
        EXPECT_EQ(app->next, app->steps.size());
    }
    if (!gGuardFired)
        g_source_remove(guard);
    knsExitKernel();
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(nullptr);
}

} // namespace
