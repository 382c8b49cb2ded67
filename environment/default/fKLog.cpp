#include "environment/Logging.h"

FILE* fKLog = stderr;
