#include "command_line.h"

#include <gtest/gtest.h>

#include <climits>

#include "helpers/captured_stream.h"

namespace Tarnwick::Parser::Tool {
namespace {

using Texts = std::vector<std::string>;

const std::string kUsage =
    "Parse single key value from Tarnwick config.\n"
    "\n"
    "USAGE:\n"
    "    ./some tool [OPTIONS] --key <config-key>\n"
    "\n"
    "OPTIONS:\n"
    "    --config <input_directory> Directory to read. Defaults to /etc/tarnwick.conf.d\n"
    "    --configs <directories>    Directories to read, separated by ':'.\n"
    "    --user-id <UID>            UID for user. Defaults to seat0 active user.\n"
    "    --instance <name>          Instance name for the container.\n"
    "    --log-level <level>        Log level. Defaults to warning.\n"
    "    --list                     Instead of printing the final value of the key, list all\n"
    "                               values defined for the key in a list. Value separator is "
    "';'.\n"
    "    --group <group>            Config group for the key. Defaults to Config\n"
    "\n"
    "REQUIRED OPTIONS:\n"
    "    --key <name>               Config key name. Required.\n";

class CommandLine : public testing::Test {
protected:
    std::optional<Options> parse(const Texts& arguments) {
        std::vector<const char*> pointers{"./some tool"};
        for (const std::string& argument : arguments) {
            pointers.push_back(argument.c_str());
        }
        return parseCommandLine(static_cast<int>(pointers.size()), pointers.data());
    }

    /// The options of a command line that must be good.
    Options accepted(const Texts& arguments) {
        const std::optional<Options> options = parse(arguments);
        EXPECT_TRUE(options.has_value());
        EXPECT_EQ(output_.take() + errors_.take(), "");
        return options.value_or(Options());
    }

    void refuses(const Texts& arguments, const std::string& message,
                 const std::string& usage = kUsage) {
        EXPECT_FALSE(parse(arguments).has_value()) << message;
        EXPECT_EQ(errors_.take(), message + '\n');
        EXPECT_EQ(output_.take(), usage);
    }

    Testing::CapturedStream output_{std::cout};
    Testing::CapturedStream errors_{std::cerr};
};

TEST_F(CommandLine, HasADefaultForEverythingButTheKey) {
    const Options options = accepted({"--key", "K"});
    EXPECT_EQ(options.key, "K");
    EXPECT_EQ(options.directories, (Texts{"/etc/tarnwick.conf.d"}));
    EXPECT_EQ(options.group, "Config");
    EXPECT_EQ(options.instance, "default");
    EXPECT_EQ(options.logLevel, "");
    EXPECT_EQ(options.userId, -1);
    EXPECT_FALSE(options.list);
}

TEST_F(CommandLine, SetsEveryOption) {
    const Options options =
        accepted({"--config", "a", "--configs", "b:c", "--instance", "i", "--user-id", "1000",
                  "--group", "G", "--key", "K", "--list", "--log-level", "debug"});
    EXPECT_EQ(options.directories, (Texts{"a", "b", "c"}));
    EXPECT_EQ(options.instance, "i");
    EXPECT_EQ(options.userId, 1000);
    EXPECT_EQ(options.group, "G");
    EXPECT_EQ(options.key, "K");
    EXPECT_TRUE(options.list);
    EXPECT_EQ(options.logLevel, "debug");
}

TEST_F(CommandLine, NeedsAnArgument) {
    refuses({}, "Needs at least one argument!");
}

TEST_F(CommandLine, NeedsAnArgumentEvenWithoutAName) {
    const char* const none[] = {nullptr};
    EXPECT_FALSE(parseCommandLine(0, none).has_value());
    EXPECT_EQ(errors_.take(), "Needs at least one argument!\n");
    EXPECT_NE(output_.take().find("\n     [OPTIONS] --key <config-key>\n"), std::string::npos);
}

TEST_F(CommandLine, NeedsAKey) {
    const std::string message = "Config key is required! Please specify a config key to parse.";
    refuses({"--list"}, message);
    refuses({"--key", ""}, message);
    refuses({"K"}, message);
    refuses({"K", "--key", "K"}, message);
    refuses({"--"}, message);
}

TEST_F(CommandLine, NeedsAValueForEveryOptionThatTakesOne) {
    const std::vector<std::pair<std::string, std::string>> rows{
        {"--config", "--config needs value. Specify alternative config directory to read."},
        {"--configs", "--configs needs value."},
        {"--instance", "--instance needs value. Specify a name."},
        {"--user-id", "--user-id needs value. Specify an UID value."},
        {"--group", "--group needs value. Specify an config group name."},
        {"--key", "--key needs value. Specify an config key name."},
        {"--log-level", "--log-level needs value."},
    };
    for (const auto& [option, message] : rows) {
        refuses({option}, message);
        refuses({"--key", "K", "--list", option}, message);
    }
}

TEST_F(CommandLine, TakesTheNextArgumentForTheValueWhateverItLooksLike) {
    EXPECT_EQ(accepted({"--key", "--list"}).key, "--list");
    EXPECT_FALSE(accepted({"--key", "--list"}).list);
    EXPECT_EQ(accepted({"--key", "--"}).key, "--");
    EXPECT_EQ(accepted({"--group", "--key", "--key", "K"}).group, "--key");
    EXPECT_EQ(accepted({"--key", "K", "--group", ""}).group, "");
}

TEST_F(CommandLine, KeepsTheLastOfARepeatedOption) {
    const Options options =
        accepted({"--key",       "A", "--key",       "B", "--group",   "G", "--group",   "H",
                  "--instance",  "i", "--instance",  "j", "--user-id", "1", "--user-id", "2",
                  "--log-level", "0", "--log-level", "1"});
    EXPECT_EQ(options.key + options.group + options.instance + options.logLevel, "BHj1");
    EXPECT_EQ(options.userId, 2);
}

TEST_F(CommandLine, CollectsDirectoriesInTheirOrder) {
    EXPECT_EQ(accepted({"--configs", "a::b:", "--config", "c:d", "--configs", "", "--key", "K",
                        "--configs", "e"})
                  .directories,
              (Texts{"a", "", "b", "c:d", "e"}));
    EXPECT_EQ(accepted({"--config", "", "--key", "K"}).directories, (Texts{""}));
    EXPECT_EQ(accepted({"--configs", "", "--key", "K"}).directories,
              (Texts{"/etc/tarnwick.conf.d"}));
}

TEST_F(CommandLine, StopsWithoutAWordAtTheFirstArgumentThatIsNoOption) {
    for (const std::string last : {"extra", "--", "-k", "-", "", "K"}) {
        const Options options = accepted({"--key", "K", last, "--list", "--nonsense", "--key"});
        EXPECT_EQ(options.key, "K") << last;
        EXPECT_FALSE(options.list) << last;
    }
}

TEST_F(CommandLine, RefusesAnUnknownOptionWithoutTheUsage) {
    for (const std::string option :
         {"--nonsense", "--key=K", "--KEY", "---", "--list ", "--help"}) {
        refuses({option}, option + ": unknown argument", "");
        refuses({"--key", "K", option, "--key"}, option + ": unknown argument", "");
    }
}

TEST_F(CommandLine, ReportsTheFirstFaultAlone) {
    refuses({"--nonsense", "--user-id", "x"}, "--nonsense: unknown argument", "");
    refuses({"--user-id", "x", "--nonsense"}, "--user-id: x does not look like an integer.");
}

TEST_F(CommandLine, ReadsTheUserIdAsFarAsItGoes) {
    const std::vector<std::pair<std::string, std::int32_t>> rows{
        {"0", 0},
        {"1000", 1000},
        {"1000x", 1000},
        {"12abc", 12},
        {" 7", 7},
        {"\t7", 7},
        {"+7", 7},
        {"-1", -1},
        {"-2", -2},
        {"0x10", 0},
        {"007", 7},
        {"1 2", 1},
        {"2147483647", INT_MAX},
        {"-2147483648", INT_MIN},
    };
    for (const auto& [text, userId] : rows) {
        EXPECT_EQ(accepted({"--key", "K", "--user-id", text}).userId, userId) << text;
    }
}

TEST_F(CommandLine, RefusesAUserIdThatIsNoNumber) {
    for (const std::string text : {"x", "", " ", "-", "+", "x1", "--key", "- 1"}) {
        refuses({"--key", "K", "--user-id", text},
                "--user-id: " + text + " does not look like an integer.");
    }
}

TEST_F(CommandLine, RefusesAUserIdOutOfRange) {
    for (const std::string text :
         {"2147483648", "-2147483649", "99999999999", "99999999999999999999999",
          "-99999999999999999999999", "4294967295", "2147483648x"}) {
        refuses({"--key", "K", "--user-id", text}, "--user-id: " + text + " is too big/small.");
    }
}

TEST_F(CommandLine, ShowsTheNameThatTheProgramWasCalledBy) {
    const char* const arguments[] = {"/some/path/x", nullptr};
    EXPECT_EQ(programName(1, arguments), "/some/path/x");
    EXPECT_EQ(programName(0, arguments + 1), "");
    printUsage("./some tool");
    EXPECT_EQ(output_.take(), kUsage);
}

}  // namespace
}  // namespace Tarnwick::Parser::Tool
