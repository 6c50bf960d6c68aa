#include "OstrelDialect/PerlRegularExpression.h"
