#include "mount_entry.h"

#include <gtest/gtest.h>

#include "helpers/captured_stream.h"

namespace Tarnwick::Parser {
namespace {

class MountEntry : public testing::Test {
protected:
    void accepts(const std::string& entry) {
        EXPECT_TRUE(isValidMountEntry(entry)) << entry;
        EXPECT_EQ(log_.take(), "") << entry;
    }

    void refuses(const std::string& entry, const std::string& problem) {
        EXPECT_FALSE(isValidMountEntry(entry)) << entry;
        EXPECT_EQ(log_.take(), "ERROR: " + problem + entry + "\n");
    }

private:
    Testing::CapturedLog log_;
};

TEST_F(MountEntry, TellsTheRuleThatIsBrokenWithoutLoggingIt) {
    EXPECT_EQ(findMountFault("/a /b tmpfs rw 0 0"), "");
    EXPECT_EQ(findMountFault("/a /b"), "Not enough parts");
    EXPECT_EQ(findMountFault("/a /b ext4 rw 0 0"),
              "File system type must be 'none' or 'tmpfs' instead of 'ext4'");
    EXPECT_EQ(Testing::CapturedLog().take(), "");
}

TEST_F(MountEntry, HasAnAbsoluteOrPseudoSourceAndOneOfThreeTypes) {
    accepts("/dev/shm /dev/shm tmpfs rw 0 0");
    accepts("none /run none bind 0 0");
    accepts("tmpfs /tmp devpts x 0 0");
    accepts("/ / none - 0 0");
}

TEST_F(MountEntry, MayHaveAnyMountPointAndOptionsEvenEmptyOnes) {
    accepts("/a relative/point tmpfs rw,size=1m 0 0");
    accepts("/a  tmpfs  0 0");
}

TEST_F(MountEntry, MayEndInOneBlank) {
    accepts("/a /b tmpfs rw 0 0 ");
    refuses("/a /b tmpfs rw 0 0  ", "Not enough parts in mount entry: ");
}

TEST_F(MountEntry, HasExactlySixFields) {
    const std::string problem = "Not enough parts in mount entry: ";
    refuses("", problem);
    refuses("garbage", problem);
    refuses("/a /b tmpfs rw 0", problem);
    refuses("/a /b tmpfs rw 0 0 x", problem);
    refuses("/a  /b tmpfs rw 0 0", problem);
    refuses(" /a /b tmpfs rw 0 0", problem);
}

TEST_F(MountEntry, TakesATabForPartOfAField) {
    refuses("/a\t/b tmpfs rw 0 0", "Not enough parts in mount entry: ");
    refuses("\t/a /b tmpfs rw 0 0", "Mount entry must begin with '/' or be 'tmpfs' or 'none': ");
}

TEST_F(MountEntry, ComesFromAnAbsolutePathOrAPseudoSource) {
    const std::string problem = "Mount entry must begin with '/' or be 'tmpfs' or 'none': ";
    refuses("proc /proc proc defaults 0 0", problem);
    refuses("a/b /b tmpfs rw 0 0", problem);
    refuses("devpts /b devpts rw 0 0", problem);
    refuses("TMPFS /b tmpfs rw 0 0", problem);
    refuses("nonexistent /b tmpfs rw 0 0", problem);
    refuses(" /b tmpfs rw 0 0", problem);
}

TEST_F(MountEntry, HasAPermittedFileSystemType) {
    const auto problem = [](const std::string& type) {
        return "File system type must be 'none' or 'tmpfs' instead of '" + type +
               "' in mount entry: ";
    };
    refuses("/a /b ext4 rw 0 0", problem("ext4"));
    refuses("/a /b Tmpfs rw 0 0", problem("Tmpfs"));
    refuses("/a /b  rw 0 0", problem(""));
}

TEST_F(MountEntry, HasZeroForDump) {
    const auto problem = [](const std::string& value) {
        return "Dump value must be '0' instead of '" + value + "' in mount entry: ";
    };
    refuses("/a /b tmpfs rw 1 0", problem("1"));
    refuses("/a /b tmpfs rw 00 0", problem("00"));
    refuses("/a /b tmpfs rw 1 2", problem("1"));
}

TEST_F(MountEntry, HasZeroForPass) {
    const auto problem = [](const std::string& value) {
        return "Backup value must be '0' instead of '" + value + "' in mount entry: ";
    };
    refuses("/a /b tmpfs rw 0 2", problem("2"));
    refuses("/a /b tmpfs rw 0 0\n", problem("0\n"));
    refuses("/a /b tmpfs rw 0  ", problem(""));
}

TEST_F(MountEntry, IsReportedForTheFirstRuleItBreaksAlone) {
    refuses("proc /proc proc defaults 1 1",
            "Mount entry must begin with '/' or be 'tmpfs' or 'none': ");
    refuses("/a /b proc rw 1 1",
            "File system type must be 'none' or 'tmpfs' instead of 'proc' in mount entry: ");
}

}  // namespace
}  // namespace Tarnwick::Parser
