#include "web/StartForm.h"
