#include "platform/SmtpErrors.h"
