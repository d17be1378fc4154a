/* GLib's key-file reader. It cannot add one file to another, so one file's keys are kept at a
   time and the asked key's last value is remembered.
   Usage: gkeyfile DIRECTORY GROUP KEY */
#include <glib.h>

#include "files.h"

struct request {
    const char* group;
    const char* key;
    char* value;
};

static void take_file(const char* path, void* context) {
    struct request* request = context;
    GKeyFile* file = g_key_file_new();

    if (!g_key_file_load_from_file(file, path, G_KEY_FILE_NONE, NULL))
        stop("GKeyFile refused a file");
    char* value = g_key_file_get_value(file, request->group, request->key, NULL);
    if (value) {
        g_free(request->value);
        request->value = value;
    }
    g_key_file_free(file);
}

int main(int argc, char** argv) {
    if (argc != 4)
        stop("usage: gkeyfile DIRECTORY GROUP KEY");
    struct request request = {argv[2], argv[3], NULL};
    for_each_file(argv[1], take_file, &request);
    if (!request.value)
        return 2;
    puts(request.value);
    return 0;
}
