#include "platform/WebClient.h"
