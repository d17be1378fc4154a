#include "config_writer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <stdexcept>

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
