#pragma once

// The routines shared by every window of the program: the text and file helpers live in the
// platform layer so the subsystems below the item window can use them too.
#include "platform/Shell.h"
#include "platform/TextRoutines.h"
