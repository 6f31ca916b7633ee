#include "kmultimedia/KSoundCaptureNative.h"

bool kCaptureHasNoDevice(const KCaptureFacts& facts)
{
    if (facts.busError || !facts.firstBufferInTime)
        return true;
    if (facts.simulated)
        return false;
    return facts.onlyMonitors || facts.standInSource;
}
