#include "qyx_observer.h"

Observer* g_Observer = nullptr;
