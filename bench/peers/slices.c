/* The practical limit: reads whole files and indexes slices of them. Nothing is copied, checked
   or expanded, so a program that stores what it reads cannot do with much less.
   Usage: slices DIRECTORY GROUP KEY */
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "key_index.h"

/* The text lives as long as the index that points into it. */
static struct slice read_file(const char* path) {
    struct stat status;
    int file = open(path, O_RDONLY | O_CLOEXEC);

    if (file < 0 || fstat(file, &status) != 0)
        stop("cannot open a file");
    size_t size = (size_t)status.st_size;
    char* text = stop_if_null(malloc(size + 1));
    for (size_t filled = 0; filled < size;) {
        ssize_t count = read(file, text + filled, size - filled);
        if (count <= 0)
            stop("cannot read a file");
        filled += (size_t)count;
    }
    close(file);
    return (struct slice){text, size};
}

static void take_line(struct key_index* index, struct slice line) {
    if (line.length == 0 || *line.start == '#' || *line.start == ';')
        return;
    if (*line.start == '[') {
        open_group(index, (struct slice){line.start + 1, line.length - 2});
        return;
    }
    const char* equals = memchr(line.start, '=', line.length);
    if (!equals)
        stop("a line without '='");
    size_t key_length = (size_t)(equals - line.start);
    store_key(index, (struct slice){line.start, key_length},
              (struct slice){equals + 1, line.length - key_length - 1});
}

static void take_file(const char* path, void* context) {
    struct slice rest = read_file(path);

    while (rest.length > 0) {
        const char* end = memchr(rest.start, '\n', rest.length);
        size_t length = end ? (size_t)(end - rest.start) : rest.length;
        take_line(context, (struct slice){rest.start, length});
        length += end != NULL;
        rest = (struct slice){rest.start + length, rest.length - length};
    }
}

int main(int argc, char** argv) {
    struct key_index index = {0};

    if (argc != 4)
        stop("usage: slices DIRECTORY GROUP KEY");
    for_each_file(argv[1], take_file, &index);
    return print_key(&index, argv[2], argv[3]);
}
