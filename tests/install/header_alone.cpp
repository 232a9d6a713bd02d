#include "arrlib.h"
