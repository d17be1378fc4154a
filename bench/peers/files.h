/* What the peers share: the files of a directory in byte order, as the tool takes them. */
#pragma once

#include <glob.h>
#include <stdio.h>
#include <stdlib.h>

typedef void (*file_function)(const char* path, void* context);

static inline void stop(const char* why) {
    fprintf(stderr, "%s\n", why);
    exit(1);
}

static inline void* stop_if_null(void* memory) {
    if (!memory)
        stop("out of memory");
    return memory;
}

static inline void for_each_file(const char* directory, file_function function, void* context) {
    char pattern[4096];
    glob_t found;

    if (snprintf(pattern, sizeof pattern, "%s/*.conf", directory) >= (int)sizeof pattern)
        stop("directory name too long");
    if (glob(pattern, 0, NULL, &found) != 0)
        stop("no files");
    for (size_t i = 0; i < found.gl_pathc; ++i)
        function(found.gl_pathv[i], context);
    globfree(&found);
}
