#include "value_sources.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "helpers/captured_stream.h"
#include "helpers/child_process.h"
#include "helpers/heap_in_use.h"
#include "helpers/process_state.h"
#include "helpers/temporary_directory.h"

namespace {

bool keepsErrno = false;

}  // namespace

// Takes the place of the C library's. For an account that is not there, that one clears errno; with
// `keepsErrno` this one leaves it as it was, as other C libraries do.
extern "C" passwd* getpwuid(uid_t uid) {
    static const auto real = reinterpret_cast<decltype(&getpwuid)>(dlsym(RTLD_NEXT, "getpwuid"));
    const int earlier = errno;
    passwd* entry = real(uid);
    if (keepsErrno) {
        errno = earlier;
    }
    return entry;
}

namespace Tarnwick::Parser {
namespace {

using Logging::LoggerConfig;

// --- Environment ---

TEST(ReadEnv, ReturnsTheTextOfAVariableEvenWhenItIsEmpty) {
    const Testing::EnvironmentScope set("TARNWICK_UNIT_X", "text");
    const Testing::EnvironmentScope empty("TARNWICK_UNIT_Y", "");
    EXPECT_EQ(readEnv("TARNWICK_UNIT_X", "default"), "text");
    EXPECT_EQ(readEnv("TARNWICK_UNIT_Y", "default"), "");
}

TEST(ReadEnv, ReturnsTheDefaultForAVariableThatIsNotSet) {
    const Testing::EnvironmentScope unset("TARNWICK_UNIT_X", std::nullopt);
    EXPECT_EQ(readEnv("TARNWICK_UNIT_X", "default"), "default");
    EXPECT_EQ(readEnv("", ""), "");
}

// --- Paths ---

TEST(ResolvePath, ReturnsTheCanonicalPath) {
    const Testing::TemporaryDirectory directory;
    const std::string target = directory.makeDirectory("a/b");
    std::filesystem::create_symlink(target, directory.path("link"));
    EXPECT_EQ(resolvePath(directory.path("a/./../a//b/")), target);
    EXPECT_EQ(resolvePath(directory.path("link")), target);
    EXPECT_EQ(resolvePath("/"), "/");
}

TEST(ResolvePath, ReturnsNothingForAPathThatIsNotThere) {
    const Testing::TemporaryDirectory directory;
    std::filesystem::create_symlink(directory.path("link"), directory.path("link"));
    EXPECT_EQ(resolvePath(directory.path("missing")), "");
    EXPECT_EQ(resolvePath(directory.path("link")), "");
    EXPECT_EQ(resolvePath(""), "");
    EXPECT_EQ(resolvePath(directory.write("file", "") + "/x"), "");
}

TEST(ResolvePath, KeepsNoMemory) {
    EXPECT_LT(Testing::heapGrowth(100, [] { (void)resolvePath("/usr/."); }), 100U);
}

// --- Password database ---

std::int32_t unusedUid() {
    std::int32_t uid = INT_MAX - 1000;
    while (getpwuid(static_cast<uid_t>(uid)) != nullptr) {
        --uid;
    }
    return uid;
}

TEST(UserInfo, ComesFromThePasswordDatabase) {
    std::string name;
    std::string home;
    gid_t group = 12345;
    EXPECT_EQ(getUserInfoForUid(0, &name, &home, &group), 1);
    const passwd* entry = getpwuid(0);
    EXPECT_EQ(name, entry->pw_name);
    EXPECT_EQ(home, entry->pw_dir);
    EXPECT_EQ(group, entry->pw_gid);
}

TEST(UserInfo, SetsOnlyTheOutputsThatAreGiven) {
    EXPECT_EQ(getUserInfoForUid(0, nullptr, nullptr, nullptr), 1);
    std::string name;
    EXPECT_EQ(getUserInfoForUid(0, &name, nullptr, nullptr), 1);
    EXPECT_EQ(name, getpwuid(0)->pw_name);
}

TEST(UserInfo, LeavesEverythingAsItIsForAnUnknownUser) {
    std::string name = "name";
    std::string home = "home";
    gid_t group = 12345;
    EXPECT_EQ(getUserInfoForUid(unusedUid(), &name, &home, &group), 0);
    EXPECT_EQ(name + home, "namehome");
    EXPECT_EQ(group, 12345U);
}

TEST(UserInfo, ForgetsAnEarlierErrorBeforeItLooks) {
    const std::int32_t uid = unusedUid();
    keepsErrno = true;
    errno = ENOTTY;
    const int found = getUserInfoForUid(uid, nullptr, nullptr, nullptr);
    const int error = errno;
    keepsErrno = false;
    EXPECT_EQ(found, 0);
    EXPECT_EQ(error, 0);
}

// --- Android properties. The library is looked for once, so each test takes a new process. ---

std::string readPropertiesWith(const char* library, const std::vector<std::string>& names) {
    return Testing::textFromChild([&] {
        if (library != nullptr && dlopen(library, RTLD_NOW) == nullptr) {
            return std::string(dlerror());
        }
        std::string texts;
        for (const std::string& name : names) {
            texts += '[' + readProperty(name) + ']';
        }
        return texts;
    });
}

TEST(ReadProperty, ReturnsWhatTheLibrarySays) {
    EXPECT_EQ(readPropertiesWith(TARNWICK_PROPERTY_STAND_IN, {"model", "longest", "model"}),
              "[Model X][" + std::string(91, 'x') + "][Model X]");
}

// What is behind the array on the stack is no longer zero after this.
[[gnu::noinline]] void fillStack() {
    volatile char bytes[8192];
    for (volatile char& byte : bytes) {
        byte = 'x';
    }
}

TEST(ReadProperty, HandsOverRoomForTheLongestPropertyFilledWithZeros) {
    const std::string room = Testing::textFromChild([] {
        if (dlopen(TARNWICK_PROPERTY_STAND_IN, RTLD_NOW) == nullptr) {
            return std::string(dlerror());
        }
        (void)readProperty("model");  // opens the library, which needs stack too
        fillStack();
        return readProperty("room");
    });
    EXPECT_EQ(room, "92");
}

TEST(ReadProperty, ReturnsNothingForAResultOfZeroOrLess) {
    EXPECT_EQ(readPropertiesWith(TARNWICK_PROPERTY_STAND_IN, {"zero", "negative", "unset"}),
              "[][][]");
}

TEST(ReadProperty, ReturnsNothingWithoutTheFunction) {
    EXPECT_EQ(readPropertiesWith(TARNWICK_PROPERTY_WITHOUT_FUNCTIONS, {"model"}), "[]");
}

TEST(ReadProperty, ReturnsNothingWithoutTheLibrary) {
    EXPECT_EQ(readPropertiesWith(nullptr, {"model", "model"}), "[][]");
}

TEST(ReadProperty, LooksForTheLibraryOnlyOnce) {
    const std::string texts = Testing::textFromChild([] {
        const std::string before = readProperty("model");
        dlopen(TARNWICK_PROPERTY_STAND_IN, RTLD_NOW);
        return '[' + before + "][" + readProperty("model") + ']';
    });
    EXPECT_EQ(texts, "[][]");
}

// --- Commands ---

class RunCommand : public testing::Test {
protected:
    std::string run(const std::string& command, const std::vector<std::string>& arguments = {}) {
        status_ = 12345;
        return runCommand(command, arguments, &status_);
    }

    Testing::CapturedLog log_{LoggerConfig::LogDebug};
    int status_ = 12345;
};

TEST_F(RunCommand, ReturnsTheOutputUnchanged) {
    EXPECT_EQ(run("echo hello"), "hello\n");
    EXPECT_EQ(status_, 0);
    EXPECT_EQ(run("printf ' a\\n\\n b '"), " a\n\n b ");
    EXPECT_EQ(run("true"), "");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(RunCommand, RunsAShellCommandLine) {
    EXPECT_EQ(run("echo a | tr a b; echo c 2>&1 >/dev/null; echo $((1 + 1))"), "b\n2\n");
}

TEST_F(RunCommand, PutsEachArgumentIntoSingleQuotes) {
    EXPECT_EQ(run("printf '<%s>'", {"a b", "", "$HOME", "*", "\"q\"", "\\n"}),
              "<a b><><$HOME><*><\"q\"><\\n>");
    EXPECT_EQ(run("echo", {"-n", "x"}), "x");
}

TEST_F(RunCommand, DoesNotEscapeQuotesInArguments) {
    EXPECT_EQ(run("printf '<%s>'", {"a' 'b"}), "<a><b>");
}

TEST_F(RunCommand, NeedsNoStatus) {
    EXPECT_EQ(runCommand("echo x; exit 3", {}, nullptr), "x\n");
    EXPECT_EQ(log_.take(), "WARNING: echo x; exit 3 exited with non-zero status: \x03\n");
}

TEST_F(RunCommand, ShowsTheExitCodeAsOneCharacterAndNoArguments) {
    EXPECT_EQ(run("exit 65 #", {"argument"}), "");
    EXPECT_EQ(log_.take(), "WARNING: exit 65 # exited with non-zero status: A\n");
    EXPECT_TRUE(WIFEXITED(status_));
    EXPECT_EQ(WEXITSTATUS(status_), 65);
    run("exit 255");
    EXPECT_EQ(log_.take(), "WARNING: exit 255 exited with non-zero status: \xFF\n");
}

TEST_F(RunCommand, KeepsTheOutputOfACommandThatFails) {
    EXPECT_EQ(run("echo x; false"), "x\n");
    EXPECT_EQ(log_.take(), "WARNING: echo x; false exited with non-zero status: \x01\n");
}

TEST_F(RunCommand, SaysNothingOfACommandThatASignalEnded) {
    EXPECT_EQ(run("echo x; kill -9 $$"), "x\n");
    EXPECT_EQ(log_.take(), "");
    EXPECT_TRUE(WIFSIGNALED(status_));
    EXPECT_EQ(WTERMSIG(status_), 9);
}

TEST_F(RunCommand, WarnsOfACommandThatIsNotThere) {
    EXPECT_EQ(run("/no/such/command 2>/dev/null"), "");
    EXPECT_EQ(log_.take(),
              "WARNING: /no/such/command 2>/dev/null exited with non-zero status: \x7F\n");
}

TEST_F(RunCommand, ReportsACommandThatCannotBeStarted) {
    if (Testing::kSanitizerNeedsDescriptors) {
        GTEST_SKIP() << "the sanitizer needs a descriptor itself";
    }
    // Nothing of the fixture is used in the scope: sanitizers need a descriptor for their checks.
    int status = 0;
    std::string output = "as it was";
    {
        const Testing::NoDescriptorsScope scope;
        output = runCommand("echo x", {"argument"}, &status);
    }
    EXPECT_EQ(output, "");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(log_.take(),
              std::string("ERROR: Failed to execute 'echo x': ") + std::strerror(EMFILE) + '\n');
}

TEST_F(RunCommand, ReportsACommandWhoseEndIsNotKnownAndKeepsItsOutput) {
    {
        const Testing::SignalScope scope(SIGCHLD, SIG_IGN);
        EXPECT_EQ(run("echo x #", {"argument"}), "x\n");
    }
    EXPECT_EQ(status_, -1);
    EXPECT_EQ(log_.take(), std::string("ERROR: echo x # pclose() exited with failure: ") +
                               std::strerror(ECHILD) + '\n');
}

TEST_F(RunCommand, LosesTheRestOfALineAfterANul) {
    EXPECT_EQ(run("printf 'a\\0b\\nc\\n'"), "ac\n");
    EXPECT_EQ(run("printf '\\0'"), "");
}

TEST_F(RunCommand, LosesNoMoreThanOneChunkAfterANul) {
    EXPECT_EQ(run("printf 'ab\\0'; head -c 2000 /dev/zero | tr '\\0' x"),
              "ab" + std::string(2003 - 1023, 'x'));
}

TEST_F(RunCommand, CollectsSeveralMegabytes) {
    const std::string output = run("head -c 3000000 /dev/zero | tr '\\0' x");
    EXPECT_EQ(output.size(), 3000000U);
    EXPECT_EQ(output.find_first_not_of('x'), output.npos);
    EXPECT_EQ(run("yes line | head -n 100000").size(), 500000U);
}

}  // namespace
}  // namespace Tarnwick::Parser
