/* libinih hands over each entry in buffers of its own, so the texts are copied, into large
   blocks, and indexed as the practical limit indexes them.
   Usage: inih DIRECTORY GROUP KEY */
#include <ini.h>

#include "key_index.h"

enum { BLOCK_SIZE = 1 << 20 };

struct store {
    struct key_index index;
    char* block;
    size_t block_left;
};

static struct slice copy_text(struct store* store, const char* text) {
    size_t length = strlen(text);

    if (length > store->block_left) {
        store->block_left = length > BLOCK_SIZE ? length : BLOCK_SIZE;
        store->block = stop_if_null(malloc(store->block_left));
    }
    char* copy = memcpy(store->block, text, length);
    store->block += length;
    store->block_left -= length;
    return (struct slice){copy, length};
}

static void follow_group(struct store* store, const char* name) {
    const struct key_index* index = &store->index;
    struct slice group = {name, strlen(name)};

    if (index->group_count == 0 || !same_text(index->groups[index->group_count - 1], group))
        open_group(&store->index, copy_text(store, name));
}

static int take_entry(void* user, const char* section, const char* name, const char* value) {
    struct store* store = user;

    follow_group(store, section);
    store_key(&store->index, copy_text(store, name), copy_text(store, value));
    return 1;
}

static void take_file(const char* path, void* context) {
    if (ini_parse(path, take_entry, context) != 0)
        stop("libinih refused a file");
}

int main(int argc, char** argv) {
    struct store store = {0};

    if (argc != 4)
        stop("usage: inih DIRECTORY GROUP KEY");
    for_each_file(argv[1], take_file, &store);
    return print_key(&store.index, argv[2], argv[3]);
}
