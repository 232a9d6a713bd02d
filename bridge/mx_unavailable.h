// The functions of bridge/mx.h that are not available, each with the type of its result and its
// parameters: the one list from which they are declared and defined. It is a list for the
// preprocessor because every row has to become a function of C linkage with a type of its own.
// Included with ARRLIB_MX_UNAVAILABLE defined; no guard.

// Commands and variables of the calling program: none can be run, read or written by name. Modules get
// what they need as inputs.
ARRLIB_MX_UNAVAILABLE(int, mexEvalString, (const char *))
ARRLIB_MX_UNAVAILABLE(mxArray *, mexGetArray, (const char *, const char *))
ARRLIB_MX_UNAVAILABLE(int, mexGetFull, (const char *, int *, int *, double **, double **))
ARRLIB_MX_UNAVAILABLE(mxArray *, mexGetGlobal, (const char *))
ARRLIB_MX_UNAVAILABLE(mxArray *, mexGetMatrix, (const char *))
ARRLIB_MX_UNAVAILABLE(mxArray *, mexGetMatrixPtr, (const char *))
ARRLIB_MX_UNAVAILABLE(int, mexIsGlobal, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(int, mxIsFromGlobalWS, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(int, mexPutArray, (mxArray *, const char *))
ARRLIB_MX_UNAVAILABLE(int, mexPutFull, (char *, int, int, double *, double *))
ARRLIB_MX_UNAVAILABLE(int, mexPutMatrix, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(void, mxSetName, (mxArray *, const char *))

// Properties of graphics objects.
ARRLIB_MX_UNAVAILABLE(const mxArray *, mexGet, (double, const char *))
ARRLIB_MX_UNAVAILABLE(int, mexSet, (double, const char *, mxArray *))

// The console: a module that has something to say gives it as an output or as a warning.
ARRLIB_MX_UNAVAILABLE(int, mexPrintf, (const char *, ...))

// Staying loaded: a module stays until the program unloads it.
ARRLIB_MX_UNAVAILABLE(int, mexIsLocked, (void))
ARRLIB_MX_UNAVAILABLE(void, mexLock, (void))
ARRLIB_MX_UNAVAILABLE(void, mexUnlock, (void))

// Memory: everything is persistent already, and its functions cannot be replaced.
ARRLIB_MX_UNAVAILABLE(void, mexMakeArrayPersistent, (mxArray *))
ARRLIB_MX_UNAVAILABLE(void, mexMakeMemoryPersistent, (void *))
ARRLIB_MX_UNAVAILABLE(void, mxSetAllocFcns, (void *(*)(size_t, size_t), void (*)(void *), void *(*)(void *, size_t), void *(*)(size_t)))

// Errors in called functions: the program's flags decide.
ARRLIB_MX_UNAVAILABLE(void, mexSetTrapFlag, (int))

// Text in memory of its own, and arrays of characters: mxGetString and mxCreateString serve.
ARRLIB_MX_UNAVAILABLE(char *, mxArrayToString, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(mxArray *, mxCreateCharArray, (int, const int *))
ARRLIB_MX_UNAVAILABLE(mxArray *, mxCreateCharMatrixFromStrings, (int, const char **))

// Cell arrays and structures cannot be passed to modules.
ARRLIB_MX_UNAVAILABLE(mxArray *, mxCreateCellArray, (int, const int *))
ARRLIB_MX_UNAVAILABLE(mxArray *, mxCreateCellMatrix, (int, int))
ARRLIB_MX_UNAVAILABLE(mxArray *, mxCreateStructArray, (int, const int *, int, const char **))
ARRLIB_MX_UNAVAILABLE(mxArray *, mxCreateStructMatrix, (int, int, int, const char **))
ARRLIB_MX_UNAVAILABLE(mxArray *, mxGetCell, (const mxArray *, int))
ARRLIB_MX_UNAVAILABLE(mxArray *, mxGetField, (const mxArray *, int, const char *))
ARRLIB_MX_UNAVAILABLE(mxArray *, mxGetFieldByNumber, (const mxArray *, int, int))
ARRLIB_MX_UNAVAILABLE(const char *, mxGetFieldNameByNumber, (const mxArray *, int))
ARRLIB_MX_UNAVAILABLE(int, mxGetFieldNumber, (const mxArray *, const char *))
ARRLIB_MX_UNAVAILABLE(int, mxGetNumberOfFields, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(void, mxSetCell, (mxArray *, int, mxArray *))
ARRLIB_MX_UNAVAILABLE(void, mxSetField, (mxArray *, int, const char *, mxArray *))
ARRLIB_MX_UNAVAILABLE(void, mxSetFieldByNumber, (mxArray *, int, int, mxArray *))

// Classes: all arrays are of doubles (mxGetClassID, mxIsClass).
ARRLIB_MX_UNAVAILABLE(const char *, mxGetClassName, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(int, mxGetElementSize, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(int, mxSetClassName, (mxArray *, const char *))

// Subscripts: mxGetR and mxSetR take a row and a column.
ARRLIB_MX_UNAVAILABLE(int, mxCalcSingleSubscript, (const mxArray *, int, const int *))

// Rows and columns of sparse entries: what is stored are positions, and mxGetR reads any element.
ARRLIB_MX_UNAVAILABLE(int *, mxGetIr, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(int *, mxGetJc, (const mxArray *))
ARRLIB_MX_UNAVAILABLE(void, mxSetIr, (mxArray *, int *))
ARRLIB_MX_UNAVAILABLE(void, mxSetJc, (mxArray *, int *))
ARRLIB_MX_UNAVAILABLE(void, mxSetNzmax, (mxArray *, int))

// Storage and sizes put into an array: fill the storage that mxGetPr gives, and see mxSetDimensions.
ARRLIB_MX_UNAVAILABLE(void, mxSetPr, (mxArray *, double *))
ARRLIB_MX_UNAVAILABLE(void, mxSetPi, (mxArray *, double *))
ARRLIB_MX_UNAVAILABLE(void, mxSetData, (mxArray *, void *))
ARRLIB_MX_UNAVAILABLE(void, mxSetImagData, (mxArray *, void *))
ARRLIB_MX_UNAVAILABLE(void, mxSetM, (mxArray *, int))
ARRLIB_MX_UNAVAILABLE(void, mxSetN, (mxArray *, int))
