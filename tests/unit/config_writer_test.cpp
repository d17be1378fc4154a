#include "config_writer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "helpers/process_state.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser {
namespace {

mode_t modeOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

mode_t currentUmask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

class ConfigWriting : public testing::Test {
protected:
    std::string written() const { return contentOf(path_); }

    static std::string contentOf(const std::string& path) { return Testing::contentOf(path); }

    Testing::TemporaryDirectory directory_;
    const std::string path_ = directory_.path("out.conf");
};

TEST_F(ConfigWriting, WritesCommentsAndKeysAndEmptyLines) {
    ConfigWriter writer(path_, false);
    writer.writeComment("generated");
    writer.writeEmptyLine();
    writer.writeKeyValue("Key", std::string("value"));
    writer.writeKeyValue("Key", "literal");
    EXPECT_EQ(written(), "# generated\n\nKey=value\nKey=literal\n");
}

TEST_F(ConfigWriting, PutsBlanksAroundTheEqualsSignWhenSpaced) {
    ConfigWriter writer(path_, true);
    writer.writeKeyValue("Key", std::string("value"));
    writer.writeKeyValue("Key", "literal");
    writer.writeKeyValue("Key", true);
    EXPECT_EQ(written(), "Key = value\nKey = literal\nKey = true\n");
}

TEST_F(ConfigWriting, WritesBooleansAsWords) {
    ConfigWriter writer(path_, false);
    writer.writeKeyValue("Key", true);
    writer.writeKeyValue("Key", false);
    EXPECT_EQ(written(), "Key=true\nKey=false\n");
}

TEST_F(ConfigWriting, TakesALiteralForATextAndNotForABoolean) {
    ConfigWriter writer(path_, false);
    const char* text = "";
    writer.writeKeyValue("Key", text);
    EXPECT_EQ(written(), "Key=\n");
}

// --- What a value may be ---

template <typename T>
concept Writable = requires(ConfigWriter& writer, T&& value) {
    writer.writeKeyValue("Key", std::forward<T>(value));
};

enum PlainEnum { PlainOne };
enum class ScopedEnum { One };
struct LikeANumber {
    operator int() const { return 5; }
};
struct LikeABoolean {
    operator bool() const { return true; }
};
struct Testable {
    explicit operator bool() const { return true; }
};

TEST_F(ConfigWriting, TakesTexts) {
    static_assert(Writable<decltype("literal")>);
    static_assert(Writable<char(&)[8]>);
    static_assert(Writable<const char*>);
    static_assert(Writable<char*>);
    static_assert(Writable<std::string>);
    static_assert(Writable<const std::string&>);
    static_assert(Writable<std::filesystem::path>);
    ConfigWriter writer(path_, false);
    char array[] = "array";
    char* pointer = array;
    writer.writeKeyValue("Key", array);
    writer.writeKeyValue("Key", pointer);
    writer.writeKeyValue("Key", std::filesystem::path("/path"));
    EXPECT_EQ(written(), "Key=array\nKey=array\nKey=/path\n");
}

TEST_F(ConfigWriting, TakesWhatStandsForABoolean) {
    static_assert(Writable<bool>);
    static_assert(Writable<const bool&>);
    static_assert(Writable<std::vector<bool>::reference>);
    static_assert(Writable<std::vector<bool>::const_reference>);
    static_assert(Writable<std::true_type>);
    static_assert(Writable<LikeABoolean>);
    ConfigWriter writer(path_, false);
    std::vector<bool> flags{true, false};
    const std::vector<bool>& same = flags;
    writer.writeKeyValue("Key", flags[0]);
    writer.writeKeyValue("Key", flags[1]);
    writer.writeKeyValue("Key", same[0]);
    EXPECT_EQ(written(), "Key=true\nKey=false\nKey=true\n");
}

TEST_F(ConfigWriting, RefusesNumbersWhenItIsCompiled) {
    static_assert(!Writable<int>);
    static_assert(!Writable<int&>);
    static_assert(!Writable<const int&>);
    static_assert(!Writable<unsigned>);
    static_assert(!Writable<long long>);
    static_assert(!Writable<double>);
    static_assert(!Writable<float>);
    static_assert(!Writable<char>);
    static_assert(!Writable<unsigned char>);
    static_assert(!Writable<char32_t>);
    static_assert(!Writable<PlainEnum>);
    static_assert(!Writable<ScopedEnum>);
    static_assert(!Writable<LikeANumber>);
}

TEST_F(ConfigWriting, RefusesPointersToAnythingButCharactersWhenItIsCompiled) {
    static_assert(!Writable<void*>);
    static_assert(!Writable<const int*>);
    static_assert(!Writable<int(&)[3]>);
    static_assert(!Writable<std::string*>);
    static_assert(!Writable<const char**>);
    static_assert(!Writable<unsigned char*>);
    static_assert(!Writable<decltype(u8"")>);
    static_assert(!Writable<decltype(L"")>);
    static_assert(!Writable<void (*)()>);
    static_assert(!Writable<void (&)()>);
    static_assert(!Writable<int Testable::*>);
    static_assert(!Writable<Testable>);
}

TEST_F(ConfigWriting, ThrowsForANullText) {
    ConfigWriter writer(path_, false);
    const char* text = nullptr;
    EXPECT_THROW(writer.writeKeyValue("Key", text), std::logic_error);
    EXPECT_EQ(written(), "");
}

TEST_F(ConfigWriting, EndsRawTextInOneLineFeed) {
    ConfigWriter writer(path_, false);
    writer.writeRaw("[Group]");
    writer.writeRaw("a=1\nb=2\n");
    writer.writeRaw("");
    writer.writeRaw("\n\n");
    writer.writeComment("");
    EXPECT_EQ(written(), "[Group]\na=1\nb=2\n\n\n\n# \n");
}

TEST_F(ConfigWriting, ChecksAndEscapesNothing) {
    ConfigWriter writer(path_, false);
    const std::string text("a=b;$\n\0\xFF", 8);
    writer.writeKeyValue(text, text);
    writer.writeComment("a\nb");
    EXPECT_EQ(written(), text + '=' + text + "\n# a\nb\n");
}

TEST_F(ConfigWriting, FlushesEachLine) {
    ConfigWriter writer(path_, false);
    writer.writeComment("one");
    EXPECT_EQ(written(), "# one\n");
    writer.writeEmptyLine();
    EXPECT_EQ(written(), "# one\n\n");
    writer.writeRaw("two");
    EXPECT_EQ(written(), "# one\n\ntwo\n");
}

TEST_F(ConfigWriting, WritesTheRestWhenItIsDestroyed) {
    { ConfigWriter(path_, false).writeRaw("one\ntwo\n"); }
    EXPECT_EQ(written(), "one\ntwo\n");
}

TEST_F(ConfigWriting, EmptiesAFileThatExists) {
    directory_.write("out.conf", "old content\n");
    ConfigWriter writer(path_, false);
    EXPECT_EQ(written(), "");
}

TEST_F(ConfigWriting, MakesAFileForItsOwnerAloneWhateverTheUmask) {
    for (const mode_t mask : {000U, 022U, 077U}) {
        const Testing::UmaskScope scope(mask);
        const std::string path = directory_.path("file-" + std::to_string(mask));
        const ConfigWriter writer(path, false);
        EXPECT_EQ(modeOf(path), 0600U);
        EXPECT_EQ(currentUmask(), mask);
    }
}

TEST_F(ConfigWriting, KeepsTheModeOfAFileThatExists) {
    directory_.write("out.conf", "");
    chmod(path_.c_str(), 0644);
    const ConfigWriter writer(path_, false);
    EXPECT_EQ(modeOf(path_), 0644U);
}

TEST_F(ConfigWriting, RestoresTheUmaskWhenTheFileCannotBeOpened) {
    const Testing::UmaskScope scope(027);
    const ConfigWriter writer(directory_.path("missing/out.conf"), false);
    EXPECT_EQ(currentUmask(), 027U);
}

TEST_F(ConfigWriting, DoesNothingWithoutAFile) {
    for (const std::string& path : {directory_.path("missing/out.conf"), directory_.path()}) {
        ConfigWriter writer(path, false);
        writer.writeComment("text");
        writer.writeKeyValue("Key", "value");
        writer.writeKeyValue("Key", true);
        writer.writeRaw("text");
        writer.writeEmptyLine();
    }
    EXPECT_FALSE(std::filesystem::exists(directory_.path("missing")));
}

TEST_F(ConfigWriting, DoesNothingMoreOnceAWriteFailed) {
    ConfigWriter writer("/dev/full", false);
    for (int line = 0; line < 1000; ++line) {
        writer.writeKeyValue("Key", "value");
        writer.writeRaw(std::string(1000, 'x'));
    }
}

TEST_F(ConfigWriting, KeepsToTheClassicLocale) {
    const Testing::ForeignLocaleScope scope;
    ConfigWriter writer(path_, false);
    writer.writeKeyValue("key", true);
    writer.writeKeyValue("Number", "1000000");
    EXPECT_EQ(written(), "key=true\nNumber=1000000\n");
}

}  // namespace
}  // namespace Tarnwick::Parser
