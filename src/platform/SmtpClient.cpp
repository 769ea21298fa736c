#include "platform/SmtpClient.h"
