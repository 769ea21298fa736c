#include "web/WebCommands.h"
