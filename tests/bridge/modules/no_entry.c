/* A library that is no module. */
#include "mex.h"

ARRLIB_MX_ENTRY int mexFunctions(void);
int mexFunctions(void)
{
    return 1;
}
