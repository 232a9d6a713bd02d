// The translated program that the host runs.
#ifndef SAVINGS_H
#define SAVINGS_H

#include <arrlib.h>

// Stores the program's dispatcher, before its first call.
void start_savings();
// The script.
M<double> savings();

#endif
