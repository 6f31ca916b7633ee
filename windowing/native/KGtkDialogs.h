#pragma once

// Shows the framework's messages (errors, notices) as GTK message boxes
// while a display is there; false puts the plain form back.
void installGtkMessageProc(bool install);
