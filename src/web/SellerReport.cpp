#include "web/SellerReport.h"
