#include <dlfcn.h>
#include <glib.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>

#include "config_parser.h"
#include "helpers/captured_stream.h"
#include "helpers/child_process.h"
#include "helpers/process_state.h"
#include "helpers/temporary_directory.h"
#include "value_sources.h"

namespace Tarnwick::Parser {
namespace {

// The client library is loaded, and the user's directory remembered, once in a process: every
// test works in child processes.

// --- Values ---

/// The text of a value that was just made, and the records in between.
std::string textOf(GVariant* value) {
    return Testing::textFromChild([value] {
        Testing::CapturedLog log;
        const std::string text = variantToString(value);
        return text + log.take();
    });
}

TEST(VariantToString, WritesBooleansAsWords) {
    EXPECT_EQ(textOf(g_variant_new_boolean(TRUE)), "true");
    EXPECT_EQ(textOf(g_variant_new_boolean(FALSE)), "false");
}

TEST(VariantToString, WritesAByteAsOneCharacter) {
    EXPECT_EQ(textOf(g_variant_new_byte(65)), "A");
    EXPECT_EQ(textOf(g_variant_new_byte(0)), std::string(1, '\0'));
    EXPECT_EQ(textOf(g_variant_new_byte(255)), "\xFF");
}

TEST(VariantToString, WritesIntegersOfEverySizeInDecimal) {
    EXPECT_EQ(textOf(g_variant_new_int16(-32768)), "-32768");
    EXPECT_EQ(textOf(g_variant_new_uint16(65535)), "65535");
    EXPECT_EQ(textOf(g_variant_new_int32(INT_MIN)), "-2147483648");
    EXPECT_EQ(textOf(g_variant_new_uint32(UINT_MAX)), "4294967295");
    EXPECT_EQ(textOf(g_variant_new_int64(G_MININT64)), "-9223372036854775808");
    EXPECT_EQ(textOf(g_variant_new_uint64(G_MAXUINT64)), "18446744073709551615");
}

TEST(VariantToString, WritesAHandleAsItsNumber) {
    EXPECT_EQ(textOf(g_variant_new_handle(7)), "7");
    EXPECT_EQ(textOf(g_variant_new_handle(-7)), "-7");
}

TEST(VariantToString, WritesDoublesWithSixSignificantDigits) {
    EXPECT_EQ(textOf(g_variant_new_double(0.5)), "0.5");
    EXPECT_EQ(textOf(g_variant_new_double(3)), "3");
    EXPECT_EQ(textOf(g_variant_new_double(3.14159265)), "3.14159");
    EXPECT_EQ(textOf(g_variant_new_double(-1e20)), "-1e+20");
    EXPECT_EQ(textOf(g_variant_new_double(1234567)), "1.23457e+06");
}

TEST(VariantToString, WritesStringsAsTheyAre) {
    EXPECT_EQ(textOf(g_variant_new_string("a 'b' \xC3\xA4")), "a 'b' \xC3\xA4");
    EXPECT_EQ(textOf(g_variant_new_string("")), "");
}

TEST(VariantToString, WritesNumbersInTheClassicLocale) {
    const Testing::ForeignLocaleScope scope;
    EXPECT_EQ(textOf(g_variant_new_int32(1000000)), "1000000");
    EXPECT_EQ(textOf(g_variant_new_double(1000.5)), "1000.5");
    EXPECT_EQ(textOf(g_variant_new_boolean(TRUE)), "true");
}

TEST(VariantToString, WritesNothingForANullValue) {
    EXPECT_EQ(textOf(nullptr), "");
}

TEST(VariantToString, WarnsOfTypesWithoutAText) {
    for (const char* text : {"['a', 'b']", "('a', 1)", "objectpath '/a'", "signature 'as'",
                             "@ms nothing", "@ms just 'a'", "<'a'>", "b'abc'", "{'a': 1}", "()"}) {
        GVariant* value = g_variant_new_parsed(text);
        const std::string type = g_variant_get_type_string(value);
        EXPECT_EQ(textOf(value), "WARNING: Unsupported GVariant type '" + type + "'\n");
    }
}

/// Whether a value that is the only owner of its data is gone after it was written.
std::string releaseOf(const GVariantType* type, std::string data) {
    return Testing::textFromChild([type, &data] {
        Testing::CapturedLog log;
        bool isReleased = false;
        const auto release = [](void* flag) { *static_cast<bool*>(flag) = true; };
        GVariant* value =
            g_variant_new_from_data(type, data.data(), data.size(), TRUE, release, &isReleased);
        (void)variantToString(g_variant_ref_sink(value));
        return std::string(isReleased ? "released" : "kept");
    });
}

TEST(VariantToString, ReleasesTheValueWhateverItsType) {
    EXPECT_EQ(releaseOf(G_VARIANT_TYPE_STRING, std::string("text\0", 5)), "released");
    EXPECT_EQ(releaseOf(G_VARIANT_TYPE_INT32, std::string("\1\0\0\0", 4)), "released");
    EXPECT_EQ(releaseOf(G_VARIANT_TYPE_BYTESTRING, std::string("abc\0", 4)), "released");
}

// --- Real databases ---

class DconfDatabase : public testing::Test {
protected:
    /// Makes this the user's database.
    void SetUp() override {
        directory_.write("keys/test",
                         "[com/vexmoor/tarnwick-unit]\n"
                         "text='hello'\nempty=''\nflag=true\nbyte=byte 65\nbig=uint64 "
                         "18446744073709551615\nhalf=0.5\nlist=['a', 'b']\n");
        directory_.makeDirectory("config/dconf");
        const std::string command = "dconf compile '" + directory_.path("config/dconf/user") +
                                    "' '" + directory_.path("keys") + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }

    /// The value of a key of the database, and the records in between.
    std::string read(const std::string& name) {
        return Testing::textFromChild([this, &name] {
            const Testing::EnvironmentScope config("XDG_CONFIG_HOME", directory_.path("config"));
            const Testing::EnvironmentScope runtime("XDG_RUNTIME_DIR", directory_.path());
            const Testing::EnvironmentScope home("HOME", directory_.path());
            const Testing::EnvironmentScope profile("DCONF_PROFILE", std::nullopt);
            Testing::CapturedLog log;
            const std::string text = readDconf("/com/vexmoor/tarnwick-unit/" + name, -1);
            return text + log.take();
        });
    }

    Testing::TemporaryDirectory directory_;
};

TEST_F(DconfDatabase, IsReadAsText) {
    EXPECT_EQ(read("text"), "hello");
    EXPECT_EQ(read("flag"), "true");
    EXPECT_EQ(read("byte"), "A");
    EXPECT_EQ(read("big"), "18446744073709551615");
    EXPECT_EQ(read("half"), "0.5");
}

TEST_F(DconfDatabase, YieldsNothingForAKeyThatIsEmptyOrNotThere) {
    EXPECT_EQ(read("empty"), "");
    EXPECT_EQ(read("missing"), "");
}

TEST_F(DconfDatabase, YieldsNothingButAWarningForAList) {
    EXPECT_EQ(read("list"), "WARNING: Unsupported GVariant type 'as'\n");
}

// --- The environment around a read ---

/// Reads the key "/k" through the stand-in, and tells what the environment is afterwards.
std::string readThroughStandIn(std::int32_t userId, const std::optional<std::string>& before) {
    return Testing::textFromChild([&] {
        const Testing::EnvironmentScope config("XDG_CONFIG_HOME", before);
        if (dlopen(TARNWICK_DCONF_STAND_IN, RTLD_NOW) == nullptr) {
            return std::string(dlerror());
        }
        const std::string text = readDconf("/k", userId);
        const char* after = std::getenv("XDG_CONFIG_HOME");
        return text + "; after " + (after != nullptr ? '\'' + std::string(after) + '\'' : "unset");
    });
}

std::string homeOf(uid_t uid) {
    return getpwuid(uid)->pw_dir;
}

TEST(ReadDconf, ReadsTheDatabaseOfTheUser) {
    EXPECT_EQ(readThroughStandIn(0, "/before"),
              "/k in " + homeOf(0) + "/.config, released 0; after '/before'");
}

TEST(ReadDconf, LeavesTheDirectorySetToNothingWhenItWasNotSet) {
    EXPECT_EQ(readThroughStandIn(0, std::nullopt),
              "/k in " + homeOf(0) + "/.config, released 0; after ''");
}

TEST(ReadDconf, GivesAnUnknownUserTheRootDirectoryForAHome) {
    EXPECT_EQ(readThroughStandIn(INT_MAX - 1, "/before"),
              "/k in /.config, released 0; after '/before'");
}

TEST(ReadDconf, LeavesTheEnvironmentAloneWithoutAUser) {
    EXPECT_EQ(readThroughStandIn(-1, "/before"), "/k in /before, released 0; after '/before'");
    EXPECT_EQ(readThroughStandIn(-1, std::nullopt), "/k in unset, released 0; after unset");
}

TEST(ReadDconf, ReleasesItsClient) {
    const std::string text = Testing::textFromChild([] {
        const Testing::EnvironmentScope config("XDG_CONFIG_HOME", "/x");
        dlopen(TARNWICK_DCONF_STAND_IN, RTLD_NOW);
        (void)readDconf("/k", -1);
        (void)readDconf("/k", -1);
        return readDconf("/k", -1);
    });
    EXPECT_EQ(text, "/k in /x, released 2");
}

TEST(ReadDconf, YieldsNothingWithoutAClientAndStillRestoresTheEnvironment) {
    const Testing::EnvironmentScope scope("TARNWICK_UNIT_NO_CLIENT", "1");
    EXPECT_EQ(readThroughStandIn(0, "/before"), "; after '/before'");
}

TEST(ReadDconf, WarnsOfAValueWithoutAType) {
    const Testing::EnvironmentScope scope("TARNWICK_UNIT_NO_TYPE", "1");
    const std::string text = Testing::textFromChild([] {
        Testing::CapturedLog log;
        dlopen(TARNWICK_DCONF_STAND_IN, RTLD_NOW);
        const std::string value = readDconf("/k", -1);
        return value + log.take();
    });
    EXPECT_EQ(text, "WARNING: Unsupported GVariant type '(null)'\n");
}

TEST(ReadDconf, YieldsNothingForAStringThatIsNull) {
    const Testing::EnvironmentScope scope("TARNWICK_UNIT_NO_TEXT", "1");
    EXPECT_EQ(readThroughStandIn(0, "/before"), "; after '/before'");
}

TEST(ReadDconf, YieldsNothingWithoutTheClientLibrarysFunctions) {
    const std::string text = Testing::textFromChild([] {
        dlopen(TARNWICK_DCONF_WITHOUT_FUNCTIONS, RTLD_NOW);
        return '[' + readDconf("/k", -1) + "][" + variantToString(nullptr) + ']';
    });
    EXPECT_EQ(text, "[][]");
}

TEST(ReadDconf, ServesTheParsersUser) {
    const std::string text = Testing::textFromChild([] {
        dlopen(TARNWICK_DCONF_STAND_IN, RTLD_NOW);
        ConfigValue value;
        (void)ConfigParser(0).parseTemplates("${dconf:/k}", value);
        return value.text;
    });
    EXPECT_EQ(text, "/k in " + homeOf(0) + "/.config, released 0");
}

}  // namespace
}  // namespace Tarnwick::Parser
