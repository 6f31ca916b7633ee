#pragma once

#include "windowing/KNativeRecord.h"

// The translator between native records and framework events.

// The event a native record stands for, fresh and unheld, or null when the
// record makes none. Mouse records keep track of the buttons: a button-up
// that never arrived is made up for by a synthetic up, processed at once.
KEvent* kksCreateEvent(const KNativeRecord& record);

// What a window procedure does with each record: translate it and process
// the event at once (posted data is queued instead). Returns the handler's
// result, 0 when there was no event.
KEventReturn kksDeliverNativeRecord(const KNativeRecord& record);

// The key code of a virtual key, 0 when the key table has none.
int32_t kksMapVirtualKey(int32_t virtualKey);

// Forgets the buttons held, the activation state and unfinished posted text.
void kksResetTranslator();

// True between a button's press and its release, as the records told.
bool kksMouseButtonDown();

// In window-order mode the palettes are kept in front of the main window
// and position changes reach the framework.
void kksSetWindowOrderMode(bool on);
bool kksWindowOrderMode();
