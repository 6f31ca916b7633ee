#pragma once

#include "kmultimedia/KAbstractMedia.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMediaSupport.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "tests/windowing/WindowingTestSupport.h"

#include <string>
#include <vector>

// A fake native layer, an application and a media manager for each test.
class MediaTest : public FakeLayerTest {
protected:
    void SetUp() override
    {
        FakeLayerTest::SetUp();
        kRegisterMultimediaClasses();
        app = kAdopt(new KApplication());
        manager = kAdopt(new KMediaManager());
    }
    void TearDown() override
    {
        manager.clear();
        app.clear();
        FakeLayerTest::TearDown();
    }

    KPtr<KApplication> app;
    KMediaManagerPtr manager;
};
