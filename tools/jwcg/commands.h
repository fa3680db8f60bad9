// SPDX-License-Identifier: MIT
//
// The rows of the command table, one function each, defined in the file of the command's family.
#ifndef JWCG_COMMANDS_H
#define JWCG_COMMANDS_H

#include "command_table.h"

namespace jws::cli {

// overlay_commands.cpp
Command intersectCommand();
Command unionCommand();
Command mergeCommand();
Command eraseCommand();
Command identityCommand();
Command symdiffCommand();
Command updateCommand();
Command spatialJoinCommand();
Command selfUnionCommand();
Command selfIntersectCommand();

// dissolve_command.cpp
Command dissolveCommand();

// clip_command.cpp
Command clipCommand();

// buffer_command.cpp
Command bufferCommand();

// bounding_commands.cpp
Command hullCommand();
Command minCircleCommand();
Command minRectCommand();
Command envelopeCommand();

// line_commands.cpp
Command simplifyCommand();
Command smoothCommand();

// transform_command.cpp
Command transformCommand();

// relate_command.cpp
Command relateCommand();

// convert_commands.cpp
Command toLinesCommand();
Command toPointsCommand();

// nearest_command.cpp
Command nearestCommand();

// info_command.cpp
Command infoCommand();

}  // namespace jws::cli

#endif  // JWCG_COMMANDS_H
