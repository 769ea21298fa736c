#include "aftersale/frmNote.h"
