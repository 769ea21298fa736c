#include "aftersale/MailSession.h"
