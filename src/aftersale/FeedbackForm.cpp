#include "aftersale/FeedbackForm.h"
