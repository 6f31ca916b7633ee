#pragma once

#include "graphics/KGraphicDevice.h"

// Saves a device's state for the scope of a block.
class KGraphicStateGuard {
public:
    explicit KGraphicStateGuard(KGraphicDevice& device)
        : device(device)
    {
        device.saveState();
    }
    ~KGraphicStateGuard() { device.restoreState(); }
    KGraphicStateGuard(const KGraphicStateGuard&) = delete;
    KGraphicStateGuard& operator=(const KGraphicStateGuard&) = delete;

private:
    KGraphicDevice& device;
};
