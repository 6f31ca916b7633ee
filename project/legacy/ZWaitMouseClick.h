#pragma once

#include "project/legacy/ZTapeObject.h"

// An old wait. Version 1 only waits for a click; version 2 has four flags
// (wait for the user, for sounds, for speech, stop the sounds) and version 3
// a fifth (show the warning), which is on before it.
class ZWaitMouseClick : public ZTapeObject {
public:
    bool readFromFile(ZFile& file) override;
    TapeObjectPtr convert(ZConversion& conversion) override;

private:
    bool waitForUser = true;
    bool waitForSounds = false;
    bool waitForSpeech = false;
    bool stopSounds = false;
    bool visualWarning = true;
};
