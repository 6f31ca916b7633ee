#pragma once

// Registers the tape's classes, after those of the kernel, the graphics, the
// windowing framework and the multimedia subsystem. The first call registers; later calls do nothing
// while the registry holds them.
void registerTapeClasses();
