#pragma once

// Registers the multimedia subsystem's classes, after those of the kernel,
// the graphics and the windowing framework. The first call registers; later
// calls do nothing while the registry holds them.
void kRegisterMultimediaClasses();
