#pragma once

// Registers Actor and ActorSequence, so that actor files and documents can
// name them. Calling it again does nothing.
void registerActorClasses();
