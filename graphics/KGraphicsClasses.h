#pragma once

// Registers the graphics subsystem's classes, after the kernel's. The first
// call registers; later calls do nothing while the registry holds them.
void kRegisterGraphicsClasses();
