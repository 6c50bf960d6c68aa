#include "OstrelDialect/PackFolders.h"
