#include "aftersale/CleanupPlan.h"
