#include "web/PageCursor.h"
