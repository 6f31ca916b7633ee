#pragma once

// Registers the project's classes, after those of the tape. The first call
// registers; later calls do nothing while the registry holds them.
void registerProjectClasses();
