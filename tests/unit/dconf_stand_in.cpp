// Stands in for the dconf client library. Every key is a text that tells the configuration
// directory of the moment and how many clients have been released.

#include <client/dconf-client.h>

#include <cstdlib>
#include <string>

namespace {

int clients = 0;
int released = 0;

std::string configHome() {
    const char* directory = std::getenv("XDG_CONFIG_HOME");
    return directory != nullptr ? directory : "unset";
}

}  // namespace

extern "C" DConfClient* dconf_client_new(void) {
    if (std::getenv("TARNWICK_UNIT_NO_CLIENT") != nullptr) {
        return nullptr;
    }
    return reinterpret_cast<DConfClient*>(&++clients);
}

extern "C" GVariant* dconf_client_read(DConfClient*, const char* key) {
    const std::string text =
        std::string(key) + " in " + configHome() + ", released " + std::to_string(released);
    return g_variant_ref_sink(g_variant_new_string(text.c_str()));
}

// The rest is found before GLib's own. These clients are no objects to GLib.
extern "C" void g_object_unref(void*) {
    ++released;
}

extern "C" const gchar* g_variant_get_type_string(GVariant*) {
    return std::getenv("TARNWICK_UNIT_NO_TYPE") != nullptr ? nullptr : "s";
}

extern "C" const gchar* g_variant_get_string(GVariant* value, gsize*) {
    const bool hasNone = std::getenv("TARNWICK_UNIT_NO_TEXT") != nullptr;
    return hasNone ? nullptr : static_cast<const gchar*>(g_variant_get_data(value));
}
