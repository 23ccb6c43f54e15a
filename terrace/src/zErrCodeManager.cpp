#include "zErrCodeManager.h"

void zErrCodeManager::RegisterCodeRange(int, int, const char*) {}

void zErrCodeManager::FreeMemory() {}
