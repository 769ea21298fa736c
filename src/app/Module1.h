#pragma once

// The routines shared by every window of the program: the text and file helpers live in the
// platform layer so the subsystems below the item window can use them too.
#include "platform/TextRoutines.h"

#include <QString>

class Shell;

// Opens a file or web address with the user's default program, working in appPath.
void OpenDocument(Shell& shell, const QString& pathOrUrl, const QString& appPath);
