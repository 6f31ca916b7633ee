#pragma once

#include "graphics/KGraphicDevice.h"

// Saves a device's clip for the scope of a block.
class KGraphicClipGuard {
public:
    explicit KGraphicClipGuard(KGraphicDevice& device)
        : device(device)
    {
        device.saveClip();
    }
    ~KGraphicClipGuard() { device.restoreClip(); }
    KGraphicClipGuard(const KGraphicClipGuard&) = delete;
    KGraphicClipGuard& operator=(const KGraphicClipGuard&) = delete;

private:
    KGraphicDevice& device;
};
