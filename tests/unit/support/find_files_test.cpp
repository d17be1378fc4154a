#include "support/find_files.h"

#include <gtest/gtest.h>

#include "helpers/heap_in_use.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser {
namespace {

using Paths = std::vector<std::string>;

class FindFiles : public testing::Test {
protected:
    Paths make(const Paths& names) {
        Paths paths;
        for (const std::string& name : names) {
            paths.push_back(directory_.write(name, ""));
        }
        return paths;
    }

    Testing::TemporaryDirectory directory_;
};

TEST_F(FindFiles, SortsByBytes) {
    const Paths sorted = make({"10.c", "9.c", "A.c", "Z.c", "_.c", "a.c", "aa.c", "z.c"});
    EXPECT_EQ(findFiles(directory_.path("*.c")), sorted);
}

TEST_F(FindFiles, PutsAShorterNameBeforeALongerOneThatBeginsWithIt) {
    const Paths sorted = make({"a", "a-", "a.", "a0", "aA", "\xC3\xA4"});
    EXPECT_EQ(findFiles(directory_.path("*")), sorted);
}

TEST_F(FindFiles, LeavesOutWhatDoesNotMatchAndWhatIsHidden) {
    make({"a.conf", ".hidden.conf", "a.conf~", "aconf", "b.CONF"});
    EXPECT_EQ(findFiles(directory_.path("*.conf")), (Paths{directory_.path("a.conf")}));
}

TEST_F(FindFiles, MarksDirectoriesBySlashes) {
    make({"a.conf"});
    directory_.makeDirectory("b.conf");
    EXPECT_EQ(findFiles(directory_.path("*.conf")),
              (Paths{directory_.path("a.conf"), directory_.path("b.conf/")}));
}

TEST_F(FindFiles, FindsLinksThatLeadNowhere) {
    std::filesystem::create_symlink("/nowhere/at/all", directory_.path("a.conf"));
    EXPECT_EQ(findFiles(directory_.path("*.conf")), (Paths{directory_.path("a.conf")}));
}

TEST_F(FindFiles, ExpandsPatternsInDirectoriesToo) {
    const Paths files = make({"d1/a.conf", "d2/a.conf"});
    make({"d3/a.conf"});
    EXPECT_EQ(findFiles(directory_.path("d[12]/*.conf")), files);
}

TEST_F(FindFiles, KeepsNoMemory) {
    make({"a", "b"});
    const std::string pattern = directory_.path("*");
    EXPECT_LT(Testing::heapGrowth(100, [&] { (void)findFiles(pattern); }), 100U);
}

TEST_F(FindFiles, FindsNothingWhereNothingMatches) {
    EXPECT_TRUE(findFiles(directory_.path("*.conf")).empty());
    EXPECT_TRUE(findFiles(directory_.path("missing/*.conf")).empty());
    EXPECT_TRUE(findFiles("").empty());
}

}  // namespace
}  // namespace Tarnwick::Parser
