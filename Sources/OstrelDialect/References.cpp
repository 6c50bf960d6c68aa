#include "OstrelDialect/References.h"
