#include "aftersale/frmEndingAuction.h"
