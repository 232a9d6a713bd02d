/* The name under which module sources include the array API. */
#include "bridge/mx.h"
