#include "OstrelDialect/Formula.h"
