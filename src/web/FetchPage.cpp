#include "web/FetchPage.h"
