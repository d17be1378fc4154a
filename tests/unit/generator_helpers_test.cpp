#include "generator_helpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "config_file.h"
#include "config_parser.h"
#include "config_writer.h"
#include "helpers/captured_stream.h"
#include "helpers/process_state.h"
#include "helpers/temporary_directory.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::GeneratorHelpers {
namespace {

using Texts = std::vector<std::string>;

const std::string kEntry = "/dev/shm /dev/shm tmpfs rw 0 0";
const std::string kOther = "none /run none bind 0 0";

class GeneratorTest : public testing::Test {
protected:
    std::string written() const { return Testing::contentOf(path_); }

    Testing::TemporaryDirectory directory_;
    Testing::CapturedLog log_;
    const std::string path_ = directory_.path("out.conf");
    ConfigWriter writer_{path_, false};
};

// --- Default files ---

class ParseDefaults : public GeneratorTest {
protected:
    std::string writeDefault(const std::string& name, std::string_view content) {
        return directory_.write("defaults/" + name, content);
    }

    void parse() { parseDefaults(writer_, directory_.path("defaults/*.conf")); }

    static std::string section(const std::string& path, const std::string& content) {
        return "\n# " + path + " content\n" + content + "# end of " + path + " content\n";
    }
};

TEST_F(ParseDefaults, CopiesAFileBetweenMarkers) {
    const std::string path = writeDefault("10-base.conf", "A=1\n");
    parse();
    EXPECT_EQ(written(), "\n# " + path + " content\nA=1\n# end of " + path + " content\n");
}

TEST_F(ParseDefaults, EndsTheContentInALineFeed) {
    const std::string path = writeDefault("a.conf", "A=1\nB=2");
    parse();
    EXPECT_EQ(written(), section(path, "A=1\nB=2\n"));
}

TEST_F(ParseDefaults, GivesAnEmptyFileOneLineFeed) {
    const std::string path = writeDefault("a.conf", "");
    parse();
    EXPECT_EQ(written(), section(path, "\n"));
}

TEST_F(ParseDefaults, TakesTheFilesInByteOrder) {
    const std::string last = writeDefault("a.conf", "last\n");
    const std::string middle = writeDefault("9.conf", "middle\n");
    const std::string first = writeDefault("10.conf", "first\n");
    parse();
    EXPECT_EQ(written(),
              section(first, "first\n") + section(middle, "middle\n") + section(last, "last\n"));
}

TEST_F(ParseDefaults, WritesNothingWhenNothingMatches) {
    writeDefault("a.txt", "A=1\n");
    parse();
    EXPECT_EQ(written(), "");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ParseDefaults, PassesOverWhatCannotBeReadWithoutAWord) {
    const std::string path = writeDefault("b.conf", "B=1\n");
    std::filesystem::create_symlink("/no/such/file", directory_.path("defaults/a.conf"));
    parse();
    EXPECT_EQ(written(), section(path, "B=1\n"));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ParseDefaults, GoesOnAfterADirectory) {
    directory_.makeDirectory("defaults/a.conf");
    const std::string path = writeDefault("b.conf", "B=1\n");
    parse();
    EXPECT_EQ(written(), section(path, "B=1\n"));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ParseDefaults, CopiesEveryByte) {
    std::string content;
    for (int code = 0; code < 256; ++code) {
        content += static_cast<char>(code);
    }
    content += std::string(100000, 'x') + "\r\n";
    const std::string path = writeDefault("a.conf", content);
    parse();
    EXPECT_EQ(written(), section(path, content));
}

// --- Mount hooks ---

class RunMountHooks : public GeneratorTest {
protected:
    std::string writeHook(const std::string& name, const std::string& script) {
        const std::string path = directory_.write("hooks/" + name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    /// A hook that prints these lines.
    std::string writePrinter(const std::string& name, const std::string& lines) {
        return writeHook(name, "cat <<'END'\n" + lines + "END\n");
    }

    void run(const Texts& arguments = {}) {
        runMountHooks(writer_, directory_.path("hooks/*"), "Mounts", arguments);
    }
};

TEST_F(RunMountHooks, WritesEachValidLineAsAValue) {
    writePrinter("10-x", kEntry + '\n' + kOther + '\n');
    run();
    EXPECT_EQ(written(), "Mounts=" + kEntry + "\nMounts=" + kOther + '\n');
    EXPECT_EQ(log_.take(), "");
}

TEST_F(RunMountHooks, ReportsADirectoryAmongTheHooksAndGoesOn) {
    directory_.makeDirectory("hooks/10-directory");
    writePrinter("20-x", kEntry + '\n');
    run();
    EXPECT_EQ(written(), "Mounts=" + kEntry + '\n');
    EXPECT_EQ(log_.take(), "WARNING: " + directory_.path("hooks/10-directory/") +
                               " exited with non-zero status: \x7e\n");
}

TEST_F(RunMountHooks, SeparatesAsTheWriterDoes) {
    writePrinter("10-x", kEntry + '\n');
    ConfigWriter spaced(path_, true);
    runMountHooks(spaced, directory_.path("hooks/*"), "Mounts", {});
    EXPECT_EQ(written(), "Mounts = " + kEntry + '\n');
}

TEST_F(RunMountHooks, WarnsOfAnInvalidLineAndGoesOn) {
    const std::string path = writePrinter("10-x", "garbage\n" + kEntry + '\n');
    run();
    EXPECT_EQ(written(), "Mounts=" + kEntry + '\n');
    EXPECT_EQ(log_.take(),
              "ERROR: Not enough parts in mount entry: garbage\n"
              "WARNING: Invalid mount entry from " +
                  path + ": garbage\n");
}

TEST_F(RunMountHooks, TakesABlankLineForAnInvalidOneButNotTheEndOfTheOutput) {
    const std::string path = writePrinter("10-x", kEntry + "\n\n" + kEntry + '\n');
    run();
    EXPECT_EQ(written(), "Mounts=" + kEntry + "\nMounts=" + kEntry + '\n');
    EXPECT_EQ(log_.take(),
              "ERROR: Not enough parts in mount entry: \n"
              "WARNING: Invalid mount entry from " +
                  path + ": \n");
}

TEST_F(RunMountHooks, WritesNothingForAHookThatPrintsNothing) {
    writeHook("10-x", "true\n");
    run();
    EXPECT_EQ(written(), "");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(RunMountHooks, WritesNothingWithoutHooks) {
    run();
    EXPECT_EQ(written(), "");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(RunMountHooks, RunsTheHooksInByteOrder) {
    writePrinter("9", "/9 /9 none rw 0 0\n");
    writePrinter("10", "/10 /10 none rw 0 0\n");
    writePrinter("B", "/B /B none rw 0 0\n");
    run();
    EXPECT_EQ(written(),
              "Mounts=/10 /10 none rw 0 0\nMounts=/9 /9 none rw 0 0\n"
              "Mounts=/B /B none rw 0 0\n");
}

TEST_F(RunMountHooks, PassesArgumentsWithBlanks) {
    writeHook("10-x", "printf '%s\\n' \"/$1 /$2 none rw 0 0\"\n");
    run({"a", "b none"});
    EXPECT_EQ(written(), "");
    log_.take();
    writeHook("10-x", "printf '/%s /%s none rw 0 0\\n' \"$1\" \"$#\"\n");
    run({"$HOME", "a b", "\"c\""});
    EXPECT_EQ(written(), "Mounts=/$HOME /3 none rw 0 0\n");
}

TEST_F(RunMountHooks, DoesNotEscapeQuotesInArguments) {
    writeHook("10-x", "printf '/%s /%s none rw 0 0\\n' \"$1\" \"$2\"\n");
    run({"a' 'b"});
    EXPECT_EQ(written(), "Mounts=/a /b none rw 0 0\n");
}

TEST_F(RunMountHooks, CannotRunAHookWithAnUnpairedQuoteInAnArgument) {
    const std::string path = writePrinter("10-x", kEntry + '\n');
    run({"it's"});
    EXPECT_EQ(written(), "");
    EXPECT_EQ(log_.take(), "WARNING: " + path + " exited with non-zero status: \x02\n");
}

TEST_F(RunMountHooks, UsesTheOutputOfAHookThatFails) {
    const std::string path = writeHook("10-x", "echo '" + kEntry + "'; exit 65\n");
    run();
    EXPECT_EQ(written(), "Mounts=" + kEntry + '\n');
    EXPECT_EQ(log_.take(), "WARNING: " + path + " exited with non-zero status: A\n");
}

TEST_F(RunMountHooks, UsesTheOutputOfAHookThatASignalEnded) {
    // The shell that runs the command line makes the signal's number an exit status, unless it
    // hands its own process over to the hook.
    writeHook("10-x", "echo '" + kEntry + "'; kill -9 $$\n");
    run();
    EXPECT_EQ(written(), "Mounts=" + kEntry + '\n');
}

TEST_F(RunMountHooks, WarnsOfAHookThatCannotBeExecuted) {
    const std::string path = directory_.write("hooks/10-x", "echo x\n");
    run();
    EXPECT_EQ(written(), "");
    EXPECT_EQ(log_.take(), "WARNING: " + path + " exited with non-zero status: ~\n");
}

TEST_F(RunMountHooks, ReportsAHookThatCannotBeStarted) {
    if (Testing::kSanitizerNeedsDescriptors) {
        GTEST_SKIP() << "the sanitizer needs a descriptor itself";
    }
    const std::string path = writePrinter("10-x", kEntry + '\n');
    ConfigWriter& writer = writer_;
    {
        // The pattern is a plain name: with no descriptor left, no directory could be listed.
        const Testing::NoDescriptorsScope scope;
        runMountHooks(writer, path, "Mounts", {});
    }
    EXPECT_EQ(written(), "");
    EXPECT_TRUE(log_.take().starts_with("ERROR: Failed to execute '" + path + "': "));
}

TEST_F(RunMountHooks, TakesALastLineWithoutALineFeed) {
    writeHook("10-x", "printf '%s\\n%s' '" + kEntry + "' '" + kOther + "'\n");
    run();
    EXPECT_EQ(written(), "Mounts=" + kEntry + "\nMounts=" + kOther + '\n');
}

TEST_F(RunMountHooks, TakesSeveralMegabytes) {
    writeHook("10-x", "yes '" + kEntry + "' | head -n 100000\n");
    run();
    const std::string content = written();
    EXPECT_EQ(content.size(), 100000 * (kEntry.size() + 8));
    EXPECT_TRUE(content.ends_with("\nMounts=" + kEntry + '\n'));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(RunMountHooks, JoinsWhatStandsBeforeANulToTheNextLine) {
    writeHook("10-x", "printf '/dev/shm /dev/shm\\0lost\\n tmpfs rw 0 0\\n'\n");
    run();
    EXPECT_EQ(written(), "Mounts=" + kEntry + '\n');
}

TEST_F(RunMountHooks, WritesNothingOnAFullDisk) {
    writePrinter("10-x", kEntry + '\n');
    ConfigWriter full("/dev/full", false);
    runMountHooks(full, directory_.path("hooks/*"), "Mounts", {});
    parseDefaults(full, directory_.path("hooks/*"));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(RunMountHooks, GivesAnAppendingReaderOneValuePerEntry) {
    writePrinter("10-x", kEntry + '\n' + kOther + '\n');
    writer_.writeRaw("[Config]");
    run();
    ConfigParser parser(-1);
    parser.addKey("Config", "Mounts", KeyMode::Append);
    ASSERT_TRUE(parser.loadFile(path_));
    Texts values;
    parser.getValue("Config", "Mounts", values);
    EXPECT_EQ(values, (Texts{kEntry, kOther}));
}

// --- Round trips ---

/// The same random names and values in every run.
class RandomTexts {
public:
    /// A text of permitted name characters.
    std::string name(std::size_t shortest, std::size_t longest) {
        std::string name;
        for (std::size_t length = number(shortest, longest); length > 0; --length) {
            name += kPermittedNameCharacters[number(0, kPermittedNameCharacters.size() - 1)];
        }
        return name;
    }

    /// A name that begins a key line, which no blank does.
    std::string key() {
        return kPermittedNameCharacters[number(1, kPermittedNameCharacters.size() - 1)] +
               name(0, 20);
    }

    /// Any bytes but a line feed.
    std::string bytes() {
        std::string text(number(0, 40), '\0');
        for (char& byte : text) {
            byte = static_cast<char>(number(0, 255));
            byte = byte == '\n' ? 'n' : byte;
        }
        return text;
    }

    std::size_t number(std::size_t smallest, std::size_t largest) {
        return smallest + generator_() % (largest - smallest + 1);
    }

private:
    std::mt19937 generator_{20250807};
};

using RoundTrip = GeneratorTest;

TEST_F(RoundTrip, GivesTheReaderWhatTheWriterWrote) {
    struct Entry {
        std::string group;
        std::string key;
        std::string value;
    };
    RandomTexts random;
    std::vector<Entry> entries;
    for (int count = 0; count < 5000; ++count) {
        entries.push_back({random.name(0, 20), random.key(), random.bytes()});
        writer_.writeRaw('[' + entries.back().group + ']');
        writer_.writeKeyValue(entries.back().key, entries.back().value);
        writer_.writeComment(random.name(0, 20));
    }

    ConfigFile file(path_);
    ConfigFileIterator read(file);
    for (const Entry& entry : entries) {
        ASSERT_TRUE(read.hasEntry());
        EXPECT_EQ(read.group(), entry.group);
        EXPECT_EQ(read.key(), entry.key);
        EXPECT_EQ(read.value(), entry.value);
        ++read;
    }
    EXPECT_TRUE(read == ConfigFileIterator::end(file));
    EXPECT_FALSE(file.failed);
}

TEST_F(RoundTrip, GivesTheParserTheValuesOfPermittedCharactersInTheirOrder) {
    RandomTexts random;
    Texts values;
    writer_.writeRaw("[G]");
    for (int count = 0; count < 5000; ++count) {
        values.push_back('x' + random.name(0, 20) + 'x');  // Blanks at the ends are trimmed.
        writer_.writeKeyValue("K", values.back());
    }
    ConfigParser parser(-1);
    ASSERT_TRUE(parser.loadFile(path_));
    Texts read;
    parser.getValue("G", "K", read);
    EXPECT_EQ(read, values);
}

TEST_F(RoundTrip, KeepsTheBlanksOfASpacedWriter) {
    ConfigWriter(path_, true).writeKeyValue("Key", "value");
    ConfigFile file(path_);
    const ConfigFileIterator entry(file);
    EXPECT_EQ(entry.key(), "Key ");
    EXPECT_EQ(entry.value(), " value");
}

}  // namespace
}  // namespace Tarnwick::Parser::GeneratorHelpers
