#include "OstrelDialect/OptionValues.h"
