#include "aftersale/frmCleanup.h"
