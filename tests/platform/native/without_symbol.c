/* A library of the right name that lacks property_get. */

int property_set(const char* name, const char* value) {
    return name == value;
}
