#pragma once

// Registers the actor elements of a tape (ActorAction, ActorMotion) and the
// scene page, after the actors' own classes. Calling it again does nothing.
void registerActorElementClasses();
