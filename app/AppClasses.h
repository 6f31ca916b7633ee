#pragma once

// Registers every class that a document or an actor file may name: the
// framework's, the tape's, the project's and the actors'. A program that
// reads documents without the main window (the tools, the tests, the
// fuzzers) calls this once at start; calling it again does nothing.
void registerDocumentClasses();
