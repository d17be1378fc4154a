/* Stands in for the Android property library: a short table of properties and the results it gives.
 * The buffer holds 92 bytes, so 91 characters are the longest value there is. */

#include <string.h>

struct property {
    const char* name;
    const char* value;
    int result; /* what property_get returns; above 0 the value counts */
};

#define TEN "0123456789"
#define LONGEST TEN TEN TEN TEN TEN TEN TEN TEN TEN "x"

static const struct property properties[] = {
    {"ro.short", "amber", 5},
    {"ro.longest", LONGEST, 91},
    {"ro.zero", "zero", 0},
    {"ro.negative", "minus", -1},
};

_Static_assert(sizeof(LONGEST) == 92, "the longest value fills the buffer");

int property_get(const char* name, char* value, const char* default_value) {
    for (size_t i = 0; i < sizeof(properties) / sizeof(properties[0]); ++i) {
        if (strcmp(properties[i].name, name) == 0) {
            strcpy(value, properties[i].value);
            return properties[i].result;
        }
    }
    strcpy(value, default_value);
    return (int)strlen(default_value);
}
