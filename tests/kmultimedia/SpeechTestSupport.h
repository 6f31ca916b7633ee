#pragma once

#include "kernel/KVariable.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/testing/KFakeSpeech.h"
#include "tests/kmultimedia/MediaTestSupport.h"

#include <cstdint>
#include <utility>
#include <vector>

// Speech over the fake engine, for the speech tests.
namespace speechtest {

// Keeps the words of the feedback events it gets.
class WordCatcher : public KThing {
public:
    KEventReturn handleEvent(KEvent& event) override
    {
        auto* feedback = dynamic_cast<KMediaFeedbackEvent*>(&event);
        if (!feedback)
            return 0;
        KVariable* type = feedback->getValue(KMediaFeedbackEvent::kMediaType);
        EXPECT_TRUE(type && type->getString() == "Speech");
        words.emplace_back(feedback->getValue(KMediaFeedbackEvent::kWordStart)->getLong(),
                           feedback->getValue(KMediaFeedbackEvent::kWordLength)->getLong());
        return 1;
    }
    std::vector<std::pair<int32_t, int32_t>> words;
};

// A media manager with a speech support over the fake engine.
class SpeechMediaTest : public MediaTest {
protected:
    void SetUp() override
    {
        MediaTest::SetUp();
        KSpeechSupport::setEngine(&engine);
        support = kAdopt(new KSpeechSupport());
        support->setInterfaceLanguage("en");
        manager->setSupport(KMediaManager::SpeechSupport, support.get());
        manager->setUp(KMediaManager::SpeechSupport);
    }
    void TearDown() override
    {
        manager->closeMediaSupport();
        support.clear();
        KSpeechSupport::setEngine(nullptr);
        MediaTest::TearDown();
    }

    KFakeSpeechEngine::Script& script() { return *engine.script; }

    KFakeSpeechEngine engine;
    KSpeechSupportPtr support;
};

} // namespace speechtest
