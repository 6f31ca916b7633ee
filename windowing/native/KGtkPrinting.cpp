// Printing through GTK: the page set-up dialog with a row of margins, and
// print jobs whose pages the program draws on the job's cairo context.

#include "graphics/native/KNativeDevice.h"
#include "windowing/native/KGtkDialogs.h"
#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkText.h"

#include <gtk/gtk.h>
#include <gtk/gtkunixprint.h>

#include <cmath>

namespace {

constexpr double kPointsPerInch = 72.0;
constexpr double kHundredthsPerMillimetre = 100.0;

// The paper and the printer chosen last, kept for the program's run.
struct PrintChoices {
    GtkPageSetup* setup = nullptr;
    GtkPrintSettings* settings = nullptr;
};

PrintChoices& choices()
{
    static PrintChoices kept;
    if (!kept.setup)
        kept.setup = gtk_page_setup_new();
    if (!kept.settings)
        kept.settings = gtk_print_settings_new();
    return kept;
}

void keepSetup(GtkPageSetup* setup)
{
    PrintChoices& kept = choices();
    g_object_unref(kept.setup);
    kept.setup = gtk_page_setup_copy(setup);
}

void keepSettings(GtkPrintSettings* settings)
{
    PrintChoices& kept = choices();
    g_object_unref(kept.settings);
    kept.settings = gtk_print_settings_copy(settings);
}

// --- The margins row ---------------------------------------------------------------

GtkWidget* marginField(GtkWidget* row, const std::string& label, int32_t hundredths)
{
    gtk_box_pack_start(GTK_BOX(row), gtk_label_new(kToUtf8(label.c_str()).c_str()), FALSE, FALSE, 0);
    GtkWidget* field = gtk_spin_button_new_with_range(0.0, 100.0, 0.5);
    gtk_spin_button_set_digits(GTK_SPIN_BUTTON(field), 1);
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(field), hundredths / kHundredthsPerMillimetre);
    gtk_box_pack_start(GTK_BOX(row), field, FALSE, FALSE, 0);
    return field;
}

int32_t hundredthsOf(GtkWidget* field)
{
    return int32_t(std::lround(gtk_spin_button_get_value(GTK_SPIN_BUTTON(field)) * kHundredthsPerMillimetre));
}

// --- The job -------------------------------------------------------------------------

struct JobContext {
    const KNativePrintJob* job = nullptr;
};

void drawJobPage(GtkPrintOperation*, GtkPrintContext* context, gint page, gpointer data)
{
    const KNativePrintJob& job = *static_cast<JobContext*>(data)->job;
    cairo_t* cr = gtk_print_context_get_cairo_context(context);
    double scale = kPointsPerInch / job.dotsPerInch;
    int32_t width = int32_t(std::lround(gtk_print_context_get_width(context) / scale));
    int32_t height = int32_t(std::lround(gtk_print_context_get_height(context) / scale));
    cairo_save(cr);
    cairo_scale(cr, scale, scale);
    if (job.drawPage)
        job.drawPage(KNativeDevice::wrapContext(cr, width, height, job.dotsPerInch, job.dotsPerInch), page + 1);
    cairo_restore(cr);
}

// Whether a printer that puts ink on paper is known; without one a job
// cannot go out without the dialog.
bool hasRealPrinter()
{
    bool found = false;
    gtk_enumerate_printers(
        [](GtkPrinter* printer, gpointer data) -> gboolean {
            if (!gtk_printer_is_virtual(printer))
                *static_cast<bool*>(data) = true;
            return *static_cast<bool*>(data);
        },
        &found, nullptr, TRUE);
    return found;
}

GtkPrintOperationAction actionFor(const KNativePrintJob& job)
{
    if (!job.exportPath.empty())
        return GTK_PRINT_OPERATION_ACTION_EXPORT;
    if (job.showDialog || !hasRealPrinter())
        return GTK_PRINT_OPERATION_ACTION_PRINT_DIALOG;
    return GTK_PRINT_OPERATION_ACTION_PRINT;
}

GtkPrintOperation* newOperation(const KNativePrintJob& job, JobContext& context)
{
    GtkPrintOperation* operation = gtk_print_operation_new();
    gtk_print_operation_set_job_name(operation, kToUtf8(job.title.c_str()).c_str());
    gtk_print_operation_set_n_pages(operation, job.pages > 0 ? job.pages : 1);
    gtk_print_operation_set_unit(operation, GTK_UNIT_POINTS);
    gtk_print_operation_set_use_full_page(operation, TRUE);
    gtk_print_operation_set_default_page_setup(operation, choices().setup);
    gtk_print_operation_set_print_settings(operation, choices().settings);
    if (!job.exportPath.empty())
        gtk_print_operation_set_export_filename(operation, job.exportPath.c_str());
    g_signal_connect(operation, "draw-page", G_CALLBACK(drawJobPage), &context);
    return operation;
}

} // namespace

bool KGtkNativeLayer::runPageSetup(KNativePageSetupRequest& request)
{
    if (!hasDisplay())
        return false;
    GtkWidget* dialog
        = gtk_page_setup_unix_dialog_new(kToUtf8(request.title.c_str()).c_str(), GTK_WINDOW(dialogParent()));
    GtkPageSetupUnixDialog* setupDialog = GTK_PAGE_SETUP_UNIX_DIALOG(dialog);
    gtk_page_setup_unix_dialog_set_page_setup(setupDialog, choices().setup);
    gtk_page_setup_unix_dialog_set_print_settings(setupDialog, choices().settings);

    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    gtk_container_set_border_width(GTK_CONTAINER(row), 6);
    gtk_box_pack_start(GTK_BOX(row), gtk_label_new(kToUtf8(request.marginsLabel.c_str()).c_str()), FALSE, FALSE, 0);
    const int32_t values[4]
        = { request.margins.left, request.margins.top, request.margins.right, request.margins.bottom };
    GtkWidget* fields[4];
    for (int side = 0; side < 4; ++side)
        fields[side] = marginField(row, request.sideLabels[side], values[side]);
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), row, FALSE, FALSE, 0);
    gtk_widget_show_all(row);

    gint response;
    {
        KGtkNativeModalGuard modal(dialog);
        response = gtk_dialog_run(GTK_DIALOG(dialog));
    }
    bool accepted = response == GTK_RESPONSE_OK;
    if (accepted) {
        keepSetup(gtk_page_setup_unix_dialog_get_page_setup(setupDialog));
        keepSettings(gtk_page_setup_unix_dialog_get_print_settings(setupDialog));
        request.margins
            = { hundredthsOf(fields[0]), hundredthsOf(fields[1]), hundredthsOf(fields[2]), hundredthsOf(fields[3]) };
    }
    gtk_widget_destroy(dialog);
    return accepted;
}

bool KGtkNativeLayer::printPaperSize(double& widthPoints, double& heightPoints)
{
    GtkPageSetup* setup = choices().setup;
    widthPoints = gtk_page_setup_get_page_width(setup, GTK_UNIT_POINTS);
    heightPoints = gtk_page_setup_get_page_height(setup, GTK_UNIT_POINTS);
    return widthPoints > 0 && heightPoints > 0;
}

bool KGtkNativeLayer::isPrintLandscape()
{
    GtkPageOrientation orientation = gtk_page_setup_get_orientation(choices().setup);
    return orientation == GTK_PAGE_ORIENTATION_LANDSCAPE || orientation == GTK_PAGE_ORIENTATION_REVERSE_LANDSCAPE;
}

int32_t KGtkNativeLayer::runPrintJob(const KNativePrintJob& job, std::string& error)
{
    if (!hasDisplay() && job.exportPath.empty()) {
        error = "no display";
        return KNativePrintJob::Failed;
    }
    JobContext context { &job };
    GtkPrintOperation* operation = newOperation(job, context);
    GError* failure = nullptr;
    GtkPrintOperationAction action = actionFor(job);
    GtkPrintOperationResult result;
    {
        KGtkNativeModalGuard modal(operation);
        result = gtk_print_operation_run(operation, action, GTK_WINDOW(dialogParent()), &failure);
    }
    int32_t outcome = KNativePrintJob::Printed;
    if (result == GTK_PRINT_OPERATION_RESULT_ERROR) {
        error = failure ? failure->message : "the print job failed";
        outcome = KNativePrintJob::Failed;
    } else if (result == GTK_PRINT_OPERATION_RESULT_CANCEL) {
        outcome = KNativePrintJob::Cancelled;
    } else if (result == GTK_PRINT_OPERATION_RESULT_APPLY) {
        keepSettings(gtk_print_operation_get_print_settings(operation));
    }
    if (failure)
        g_error_free(failure);
    g_object_unref(operation);
    return outcome;
}
