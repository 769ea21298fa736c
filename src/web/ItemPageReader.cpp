#include "web/ItemPageReader.h"
