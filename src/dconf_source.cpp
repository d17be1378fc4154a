// The dconf source: whose database is read, and how its values become text.

#include <client/dconf-client.h>
#include <glib-object.h>
#include <glib.h>

#include <array>
#include <cstdlib>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "logging/log_record.h"
#include "support/dynamic_library.h"
#include "value_sources.h"

namespace Tarnwick::Parser {
namespace {

/// What is called of the client library and of the GLib under it.
struct DconfApi {
    decltype(&::dconf_client_new) clientNew = nullptr;
    decltype(&::dconf_client_read) clientRead = nullptr;
    decltype(&::g_object_unref) objectUnref = nullptr;
    decltype(&::g_variant_unref) variantUnref = nullptr;
    decltype(&::g_variant_get_type_string) typeString = nullptr;
    decltype(&::g_variant_get_boolean) getBoolean = nullptr;
    decltype(&::g_variant_get_byte) getByte = nullptr;
    decltype(&::g_variant_get_int16) getInt16 = nullptr;
    decltype(&::g_variant_get_uint16) getUint16 = nullptr;
    decltype(&::g_variant_get_int32) getInt32 = nullptr;
    decltype(&::g_variant_get_handle) getHandle = nullptr;
    decltype(&::g_variant_get_uint32) getUint32 = nullptr;
    decltype(&::g_variant_get_int64) getInt64 = nullptr;
    decltype(&::g_variant_get_uint64) getUint64 = nullptr;
    decltype(&::g_variant_get_double) getDouble = nullptr;
    decltype(&::g_variant_get_string) getString = nullptr;
};

bool fill(DconfApi& api, const DynamicLibrary& library) {
    return library.find("dconf_client_new", api.clientNew) &&
           library.find("dconf_client_read", api.clientRead) &&
           library.find("g_object_unref", api.objectUnref) &&
           library.find("g_variant_unref", api.variantUnref) &&
           library.find("g_variant_get_type_string", api.typeString) &&
           library.find("g_variant_get_boolean", api.getBoolean) &&
           library.find("g_variant_get_byte", api.getByte) &&
           library.find("g_variant_get_int16", api.getInt16) &&
           library.find("g_variant_get_uint16", api.getUint16) &&
           library.find("g_variant_get_int32", api.getInt32) &&
           library.find("g_variant_get_handle", api.getHandle) &&
           library.find("g_variant_get_uint32", api.getUint32) &&
           library.find("g_variant_get_int64", api.getInt64) &&
           library.find("g_variant_get_uint64", api.getUint64) &&
           library.find("g_variant_get_double", api.getDouble) &&
           library.find("g_variant_get_string", api.getString);
}

/// The functions, or null when the client library is not installed.
const DconfApi* dconfApi() {
    static DconfApi api;
    static const bool isFilled = fill(api, DynamicLibrary("libdconf.so.1"));
    return isFilled ? &api : nullptr;
}

struct VariantUnref {
    void operator()(GVariant* value) const { dconfApi()->variantUnref(value); }
};
using VariantHandle = std::unique_ptr<GVariant, VariantUnref>;

struct ClientUnref {
    void operator()(DConfClient* client) const { dconfApi()->objectUnref(client); }
};
using ClientHandle = std::unique_ptr<DConfClient, ClientUnref>;

/// Points XDG_CONFIG_HOME at another directory for the time of a scope.
class ConfigHomeScope {
public:
    explicit ConfigHomeScope(const std::string& directory)
        : saved_(readEnv("XDG_CONFIG_HOME", "")) {
        set(directory);
    }
    // A variable that was unset stays set to the empty text, see readDconf.
    ~ConfigHomeScope() { set(saved_); }
    ConfigHomeScope(const ConfigHomeScope&) = delete;
    ConfigHomeScope& operator=(const ConfigHomeScope&) = delete;

private:
    static void set(const std::string& directory) {
        (void)setenv("XDG_CONFIG_HOME", directory.c_str(), 1);  // fails for lack of memory alone
    }

    std::string saved_;
};

std::string configHomeOf(std::int32_t userId) {
    std::string home;
    (void)getUserInfoForUid(userId, nullptr, &home, nullptr);  // An unknown user has no home.
    return home + "/.config";
}

template <typename Value>
std::string toText(Value value) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    return stream.fail() ? std::string() : stream.str();
}

using Writer = std::string (*)(const DconfApi& api, GVariant* value);

// The writer of the values that an accessor reads.
template <auto accessor>
std::string writeWith(const DconfApi& api, GVariant* value) {
    return toText((api.*accessor)(value));
}

std::string writeBoolean(const DconfApi& api, GVariant* value) {
    return api.getBoolean(value) != 0 ? "true" : "false";
}

std::string writeString(const DconfApi& api, GVariant* value) {
    const char* text = api.getString(value, nullptr);
    return text != nullptr ? text : "";
}

struct TypeRow {
    char type;
    Writer write;
};
constexpr std::array kTypes{
    TypeRow{'b', writeBoolean},
    TypeRow{'y', writeWith<&DconfApi::getByte>},  // an unsigned char: one raw character
    TypeRow{'n', writeWith<&DconfApi::getInt16>},
    TypeRow{'q', writeWith<&DconfApi::getUint16>},
    TypeRow{'i', writeWith<&DconfApi::getInt32>},
    TypeRow{'h', writeWith<&DconfApi::getHandle>},  // GLib refuses the accessor of 'i' for it
    TypeRow{'u', writeWith<&DconfApi::getUint32>},
    TypeRow{'x', writeWith<&DconfApi::getInt64>},
    TypeRow{'t', writeWith<&DconfApi::getUint64>},
    TypeRow{'d', writeWith<&DconfApi::getDouble>},
    TypeRow{'s', writeString},
};

Writer writerOf(std::string_view type) {
    for (const TypeRow& row : kTypes) {
        if (type == std::string_view(&row.type, 1)) {
            return row.write;
        }
    }
    return nullptr;
}

std::string readDatabase(const std::string& key) {
    const DconfApi* api = dconfApi();
    if (api == nullptr) {
        return {};
    }
    const ClientHandle client(api->clientNew());
    return client ? variantToString(api->clientRead(client.get(), key.c_str())) : std::string();
}

}  // namespace

std::string readDconf(const std::string& key, std::int32_t userId) {
    if (userId == -1) {
        return readDatabase(key);
    }
    const ConfigHomeScope scope(configHomeOf(userId));
    return readDatabase(key);
}

std::string variantToString(GVariant* value) {
    const DconfApi* api = dconfApi();
    if (value == nullptr || api == nullptr) {
        return {};
    }
    const VariantHandle owned(value);
    const char* type = api->typeString(value);
    if (const Writer write = writerOf(type != nullptr ? type : "")) {
        return write(*api, value);
    }
    Logging::logWarning(Logging::parserLogger) << "Unsupported GVariant type '" << type << "'";
    return {};
}

}  // namespace Tarnwick::Parser
