#include "web/PageCache.h"
