#pragma once

#include "windowing/KApplication.h"

// TaleLoom's application object.
class StylusApplication : public KApplication {
    K_DECLARE_CLASS(StylusApplication)
public:
    StylusApplication();
    ~StylusApplication() override;

    void doInit() override;

    // Registers the program's own classes after the framework's.
    static void registerClasses();
};
