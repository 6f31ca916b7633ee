#pragma once

#include "tools/taleloom-tool/ToolCommand.h"

// taleloom-tool publish PROJECT.TPD --to DIR --name N [--no-player] [--player PATH]
// Publishes the story as the program's Publish command does, without
// questions, and prints JSON: the folder, each medium copied with its new
// name, the actors, the media that were missing, and whether the player
// went in. The player is PATH, else $TALELOOM_PLAYER, else the one built
// beside the program.
ToolCommand publishCommand();
