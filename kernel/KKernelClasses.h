#pragma once

// Registers the kernel's classes in their fixed order. The first call
// registers; later calls do nothing while the registry holds them.
void kRegisterKernelClasses();
