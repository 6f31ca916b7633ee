#pragma once

// Registers the windowing framework's classes after the kernel's, in their
// fixed order. The first call registers; later calls do nothing while the
// registry holds them.
void kRegisterWindowingClasses();
