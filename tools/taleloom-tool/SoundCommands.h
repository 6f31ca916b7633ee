#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

// The sound and speech commands of taleloom-tool. They run without a
// display; with TALELOOM_AUDIO=null without a sound card as well.
//
// voices [--language L]
//     JSON: the voice names ("voices"; with a language, those that speak it,
//     best first) and the default voice ("default").
// speak TEXT [--voice V] [--speed S] [--volume V] -o OUT.wav [--events]
//     Writes the speech (TEXT in UTF-8) as a WAV file; with --events prints
//     its words as JSON: wordStart, wordLength and time (ms of audio).
// play FILE [--volume V] [--balance B] [--to-file OUT.wav] [--json]
//     Plays the sound, or renders it through the same pipeline into a WAV
//     file, and reports the status, the duration and the time it took.
// record --seconds N -o OUT.wav
//     Records N seconds from the input (a test tone with TALELOOM_AUDIO=null).
ToolCommand voicesCommand();
ToolCommand speakCommand();
ToolCommand playCommand();
ToolCommand recordCommand();
