// Signals from the session, turned into calls on the loop's thread, where
// the program may save and describe itself: logout, a closed terminal or
// Control+C end it; SIGUSR1 asks for its state file.

#include "windowing/native/KGLibNativeLayer.h"

#include <glib-unix.h>

#include <csignal>

namespace {

KNativeLayer::SignalHandler gTermination = nullptr;
KNativeLayer::SignalHandler gStateRequest = nullptr;

gboolean onTermination(gpointer data)
{
    if (gTermination)
        gTermination(GPOINTER_TO_INT(data));
    return G_SOURCE_CONTINUE;
}

gboolean onStateRequest(gpointer data)
{
    if (gStateRequest)
        gStateRequest(GPOINTER_TO_INT(data));
    return G_SOURCE_CONTINUE;
}

} // namespace

void KGLibNativeLayer::watchTermination(SignalHandler handler)
{
    bool first = gTermination == nullptr;
    gTermination = handler;
    if (!first || !handler)
        return;
    for (int signal : { SIGTERM, SIGHUP, SIGINT })
        g_unix_signal_add(signal, &onTermination, GINT_TO_POINTER(signal));
}

void KGLibNativeLayer::watchStateRequest(SignalHandler handler)
{
    bool first = gStateRequest == nullptr;
    gStateRequest = handler;
    if (first && handler)
        g_unix_signal_add(SIGUSR1, &onStateRequest, GINT_TO_POINTER(SIGUSR1));
}
