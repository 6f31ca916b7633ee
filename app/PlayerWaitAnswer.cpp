#include "app/PlayerWaitAnswer.h"
#include "app/StylusActions.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/WaitObject.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KWindow.h"

PlayerWaitAnswer::PlayerWaitAnswer()
    : timer(kAdopt(new KTimer()))
{
    timer->setInterval(kCheckMilliseconds);
    timer->setRepeat(true);
    timer->setTarget(this);
}

PlayerWaitAnswer::~PlayerWaitAnswer()
{
    timer->stop();
    timer->setTarget(nullptr);
}

void PlayerWaitAnswer::start() { timer->start(); }

void PlayerWaitAnswer::timerFired(KTimer&)
{
    StylusActions* actions = StylusActions::current();
    StylusProject* project = actions ? actions->getProject() : nullptr;
    Tape* tape = project ? project->getTape() : nullptr;
    if (!tape || tape->getPlayState() != Tape::PlayState::Playing) {
        waitingIndex = -1;
        return;
    }
    int32_t index = tape->getPlayIndex();
    auto* wait = dynamic_cast<WaitObject*>(tape->getAt(index));
    if (!wait || !wait->getWaitForUser()) {
        waitingIndex = -1;
        return;
    }
    if (index != waitingIndex) {
        waitingIndex = index;
        waited = 0;
        return;
    }
    waited += kCheckMilliseconds;
    if (waited >= kWaitMilliseconds) {
        waitingIndex = -1;
        // Answered as a person would: a key the wait takes.
        KKeyEvent space(KKeyEvent::KeyDown, nullptr, ' ', 0);
        tape->handleKeyDown(space);
    }
}
