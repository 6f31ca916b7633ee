#include "windowing/native/KGtkDialogs.h"

#include "kernel/KErrorHandler.h"
#include "windowing/KEvent.h"
#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkText.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <cmath>

namespace {

gint runDialog(GtkWidget* dialog)
{
    KGtkNativeModalGuard guard(dialog);
    return gtk_dialog_run(GTK_DIALOG(dialog));
}

void showGtkMessage(const char* text, const char* caption, int32_t flags)
{
    GtkMessageType type = flags == KErrorHandler::kFatalBoxFlags ? GTK_MESSAGE_ERROR : GTK_MESSAGE_INFO;
    std::string body = kToUtf8(text);
    GtkWidget* dialog = gtk_message_dialog_new(nullptr, GTK_DIALOG_MODAL, type, GTK_BUTTONS_OK, "%s", body.c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), kToUtf8(caption).c_str());
    gtk_window_set_keep_above(GTK_WINDOW(dialog), TRUE);
    runDialog(dialog);
    gtk_widget_destroy(dialog);
}

// "*.[pP][nN][gG]": the chooser's patterns are case sensitive.
std::string anyCasePattern(const std::string& extension)
{
    std::string pattern = "*.";
    for (char c : extension) {
        char lower = g_ascii_tolower(c);
        char upper = g_ascii_toupper(c);
        if (lower == upper) {
            pattern += c;
        } else {
            pattern += '[';
            pattern += lower;
            pattern += upper;
            pattern += ']';
        }
    }
    return pattern;
}

void addFilters(GtkFileChooser* chooser, const KNativeChooserRequest& request)
{
    for (const KNativeFileFilter& wanted : request.filters) {
        GtkFileFilter* filter = gtk_file_filter_new();
        gtk_file_filter_set_name(filter, kToUtf8(wanted.name.c_str()).c_str());
        for (const std::string& extension : wanted.extensions)
            gtk_file_filter_add_pattern(filter, anyCasePattern(extension).c_str());
        gtk_file_chooser_add_filter(chooser, filter);
    }
}

std::string fileName(const std::string& windowsText)
{
    std::string utf8 = kToUtf8(windowsText.c_str());
    gchar* name = g_filename_from_utf8(utf8.c_str(), -1, nullptr, nullptr, nullptr);
    std::string result = name ? name : utf8;
    g_free(name);
    return result;
}

std::string windowsText(const gchar* fileName)
{
    gchar* utf8 = g_filename_to_utf8(fileName, -1, nullptr, nullptr, nullptr);
    std::string result = kFromUtf8(utf8 ? utf8 : fileName);
    g_free(utf8);
    return result;
}

GtkFileChooserAction chooserAction(KNativeChooserRequest::Mode mode)
{
    switch (mode) {
    case KNativeChooserRequest::Save:
        return GTK_FILE_CHOOSER_ACTION_SAVE;
    case KNativeChooserRequest::Folder:
        return GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER;
    default:
        return GTK_FILE_CHOOSER_ACTION_OPEN;
    }
}

const char* acceptLabel(KNativeChooserRequest::Mode mode)
{
    switch (mode) {
    case KNativeChooserRequest::Save:
        return "_Save";
    case KNativeChooserRequest::Folder:
        return "_Select";
    default:
        return "_Open";
    }
}

uint16_t channel(double value) { return uint16_t(std::lround(std::clamp(value, 0.0, 1.0) * 65535.0)); }

void addButtons(GtkWidget* dialog, KNativeAlertRequest::Style style)
{
    switch (style) {
    case KNativeAlertRequest::YesNo:
    case KNativeAlertRequest::YesNoDefaultNo:
        gtk_dialog_add_button(GTK_DIALOG(dialog), "_No", GTK_RESPONSE_NO);
        gtk_dialog_add_button(GTK_DIALOG(dialog), "_Yes", GTK_RESPONSE_YES);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog),
                                        style == KNativeAlertRequest::YesNo ? GTK_RESPONSE_YES : GTK_RESPONSE_NO);
        break;
    case KNativeAlertRequest::YesNoCancel:
        gtk_dialog_add_button(GTK_DIALOG(dialog), "_Cancel", GTK_RESPONSE_CANCEL);
        gtk_dialog_add_button(GTK_DIALOG(dialog), "_No", GTK_RESPONSE_NO);
        gtk_dialog_add_button(GTK_DIALOG(dialog), "_Yes", GTK_RESPONSE_YES);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_YES);
        break;
    case KNativeAlertRequest::OkCancel:
        gtk_dialog_add_button(GTK_DIALOG(dialog), "_Cancel", GTK_RESPONSE_CANCEL);
        gtk_dialog_add_button(GTK_DIALOG(dialog), "_OK", GTK_RESPONSE_OK);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_OK);
        break;
    default:
        gtk_dialog_add_button(GTK_DIALOG(dialog), "_OK", GTK_RESPONSE_OK);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_OK);
        break;
    }
}

int32_t answerOf(gint response, KNativeAlertRequest::Style style)
{
    switch (response) {
    case GTK_RESPONSE_YES:
        return KNativeAnswer::Yes;
    case GTK_RESPONSE_NO:
        return KNativeAnswer::No;
    case GTK_RESPONSE_OK:
        return KNativeAnswer::Ok;
    default:
        // Closing the box: "no" where there is no cancel.
        if (style == KNativeAlertRequest::YesNo || style == KNativeAlertRequest::YesNoDefaultNo)
            return KNativeAnswer::No;
        if (style == KNativeAlertRequest::Information || style == KNativeAlertRequest::Error)
            return KNativeAnswer::Ok;
        return KNativeAnswer::Cancel;
    }
}

} // namespace

void installGtkMessageProc(bool install) { KErrorHandler::setMessageProc(install ? &showGtkMessage : nullptr); }

bool KGtkNativeLayer::chooseFile(const KNativeChooserRequest& request, std::string& path)
{
    if (!hasDisplay())
        return false;
    GtkWindow* parent = GTK_WINDOW(dialogParent());
    GtkWidget* dialog = gtk_file_chooser_dialog_new(kToUtf8(request.title.c_str()).c_str(), parent,
                                                    chooserAction(request.mode), "_Cancel", GTK_RESPONSE_CANCEL,
                                                    acceptLabel(request.mode), GTK_RESPONSE_ACCEPT, nullptr);
    GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
    if (request.mode == KNativeChooserRequest::Save)
        gtk_file_chooser_set_do_overwrite_confirmation(chooser, TRUE);
    if (!request.folder.empty())
        gtk_file_chooser_set_current_folder(chooser, fileName(request.folder).c_str());
    if (request.mode == KNativeChooserRequest::Save && !request.name.empty())
        gtk_file_chooser_set_current_name(chooser, kToUtf8(request.name.c_str()).c_str());
    addFilters(chooser, request);
    bool accepted = runDialog(dialog) == GTK_RESPONSE_ACCEPT;
    if (accepted) {
        gchar* chosen = gtk_file_chooser_get_filename(chooser);
        accepted = chosen != nullptr;
        if (chosen)
            path = windowsText(chosen);
        g_free(chosen);
    }
    gtk_widget_destroy(dialog);
    return accepted;
}

bool KGtkNativeLayer::chooseColour(const char* title, KNativeColour& colour)
{
    if (!hasDisplay())
        return false;
    GtkWidget* dialog = gtk_color_chooser_dialog_new(kToUtf8(title).c_str(), GTK_WINDOW(dialogParent()));
    GdkRGBA rgba { colour.red / 65535.0, colour.green / 65535.0, colour.blue / 65535.0, 1.0 };
    gtk_color_chooser_set_use_alpha(GTK_COLOR_CHOOSER(dialog), FALSE);
    gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(dialog), &rgba);
    bool accepted = runDialog(dialog) == GTK_RESPONSE_OK;
    if (accepted) {
        gtk_color_chooser_get_rgba(GTK_COLOR_CHOOSER(dialog), &rgba);
        colour = { channel(rgba.red), channel(rgba.green), channel(rgba.blue) };
    }
    gtk_widget_destroy(dialog);
    return accepted;
}

int32_t KGtkNativeLayer::messageBox(const KNativeAlertRequest& alert)
{
    if (!hasDisplay())
        return KGLibNativeLayer::messageBox(alert);
    GtkMessageType type = GTK_MESSAGE_INFO;
    if (alert.style == KNativeAlertRequest::Error)
        type = GTK_MESSAGE_ERROR;
    else if (alert.style != KNativeAlertRequest::Information)
        type = GTK_MESSAGE_QUESTION;
    GtkWidget* dialog = gtk_message_dialog_new(GTK_WINDOW(dialogParent()), GTK_DIALOG_MODAL, type, GTK_BUTTONS_NONE,
                                               "%s", kToUtf8(alert.text.c_str()).c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), kToUtf8(alert.title.c_str()).c_str());
    addButtons(dialog, alert.style);
    int32_t answer = answerOf(runDialog(dialog), alert.style);
    gtk_widget_destroy(dialog);
    return answer;
}

void KGtkNativeLayer::beep()
{
    if (hasDisplay())
        gdk_display_beep(gdk_display_get_default());
}
