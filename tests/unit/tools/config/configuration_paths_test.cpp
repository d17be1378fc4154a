#include "config/configuration_paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "config/command.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

class ConfigurationPaths : public testing::Test {
protected:
    [[nodiscard]] std::string in(const std::string& name) const { return directory_.path(name); }

    std::string make(const std::string& name) const { return directory_.write(name, "text"); }

    [[nodiscard]] static PathKind kindOf(const std::string& path) {
        return configurationPaths({}, {path}).front().kind;
    }

    Testing::TemporaryDirectory directory_;
};

TEST_F(ConfigurationPaths, TellsWhatEachPathIs) {
    make("one.conf");
    EXPECT_EQ(kindOf(directory_.path()), PathKind::Directory);
    EXPECT_EQ(kindOf(in("one.conf")), PathKind::File);
    EXPECT_EQ(kindOf("-"), PathKind::StandardInput);
    EXPECT_EQ(kindOf(in("none")), PathKind::Unavailable);
    EXPECT_EQ(kindOf(""), PathKind::Directory) << "the root directory";
}

TEST_F(ConfigurationPaths, TakesAPatternWithFilesForADirectory) {
    make("d1/a.conf");
    EXPECT_EQ(kindOf(in("d[12]")), PathKind::Directory);
    EXPECT_EQ(kindOf(in("d[34]")), PathKind::Unavailable);
}

TEST_F(ConfigurationPaths, PutsThoseOfTheContextFirst) {
    Context context;
    context.directories = {in("x"), in("y")};
    const auto paths = configurationPaths(context, {in("z")});
    ASSERT_EQ(paths.size(), 3U);
    EXPECT_EQ(paths[0].path, in("x"));
    EXPECT_EQ(paths[2].path, in("z"));
    EXPECT_EQ(paths[2].problem, "No such file or directory");
}

TEST_F(ConfigurationPaths, FallsBackOnTheDefaultDirectory) {
    const auto paths = configurationPaths({}, {});
    ASSERT_EQ(paths.size(), 1U);
    EXPECT_EQ(paths[0].path, "/etc/tarnwick.conf.d");
}

TEST_F(ConfigurationPaths, FindsNamesThatLookMeantInByteOrder) {
    for (const char* name : {"z.ini", "a.CONF", ".b.conf", "c.conf.bak", "read.conf", "notes",
                             "d.conf.dpkg-old", ".e.conf.swp", "#f.conf#", "g.conf~"}) {
        make(name);
    }
    directory_.makeDirectory("folder.ini");
    std::string problem;
    std::vector<std::string> found;
    for (const IgnoredFile& file : findIgnoredFiles(directory_.path(), problem)) {
        found.push_back(file.path.substr(directory_.path().size() + 1));
        EXPECT_NE(file.reason, "");
    }
    EXPECT_EQ(found, (std::vector<std::string>{".b.conf", "a.CONF", "c.conf.bak", "z.ini"}));
    EXPECT_EQ(problem, "");
}

TEST_F(ConfigurationPaths, TellsWhyADirectoryCannotBeRead) {
    std::string problem;
    EXPECT_TRUE(findIgnoredFiles(in("none"), problem).empty());
    EXPECT_EQ(problem, "No such file or directory");
}

TEST_F(ConfigurationPaths, OpensRegularFilesAlone) {
    const OpenedFile opened = openRegularFile(make("a.conf"));
    ASSERT_GE(opened.descriptor, 0);
    EXPECT_TRUE(S_ISREG(opened.mode));
    close(opened.descriptor);

    ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
    EXPECT_EQ(openRegularFile(in("pipe")).problem, "it is no regular file");
    EXPECT_EQ(openRegularFile(directory_.path()).problem, "it is a directory");
    EXPECT_EQ(openRegularFile("/dev/null").problem, "it is no regular file");
    EXPECT_EQ(openRegularFile(in("none")).problem, "No such file or directory");
    EXPECT_EQ(openRegularFile(in("none")).descriptor, -1);
}

}  // namespace
}  // namespace Tarnwick::Parser::ConfigTool
