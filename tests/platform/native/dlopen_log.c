/* Preloaded into the tool: appends the name of every library that it opens to the file
 * named by DLOPEN_LOG, one a line, and opens it. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

void* dlopen(const char* file, int flags) {
    void* (*open_library)(const char*, int);
    *(void**)&open_library = dlsym(RTLD_NEXT, "dlopen");

    FILE* log = fopen(getenv("DLOPEN_LOG"), "ae");
    if (log != NULL) {
        fprintf(log, "%s\n", file != NULL ? file : "(self)");
        fclose(log);
    }
    return open_library(file, flags);
}
