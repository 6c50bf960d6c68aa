#include "OstrelDialect/ActionText.h"
