#include "kernel/KClassStreamState.h"

namespace {

// Single-threaded by design: one load runs at a time.
struct ReadState {
    int32_t policy = KClassStreamState::DropObject;
    int32_t skipped = 0;
    int32_t dropped = 0;
    int32_t nulled = 0;
    int32_t depth = 0;
};

ReadState gState;

} // namespace

int32_t KClassStreamState::unknownClassPolicy() { return gState.policy; }
void KClassStreamState::setUnknownClassPolicy(int32_t policy) { gState.policy = policy; }

int32_t KClassStreamState::skippedClassData() { return gState.skipped; }
int32_t KClassStreamState::droppedObjects() { return gState.dropped; }
int32_t KClassStreamState::nulledObjects() { return gState.nulled; }

void KClassStreamState::countSkippedClassData() { ++gState.skipped; }
void KClassStreamState::countDroppedObject() { ++gState.dropped; }
void KClassStreamState::countNulledObject() { ++gState.nulled; }

void KClassStreamState::reset()
{
    gState.policy = DropObject;
    gState.skipped = 0;
    gState.dropped = 0;
    gState.nulled = 0;
}

int32_t KClassStreamState::objectDepth() { return gState.depth; }
void KClassStreamState::enterObject() { ++gState.depth; }
void KClassStreamState::leaveObject() { --gState.depth; }
