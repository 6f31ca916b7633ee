#pragma once

// Makes the pictures compiled into the program readable as resources under
// "/org/taleloom/art/". Safe to call any number of times.
void registerArtBundle();
