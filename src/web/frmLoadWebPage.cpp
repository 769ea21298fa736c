#include "web/frmLoadWebPage.h"
