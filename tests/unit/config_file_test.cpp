#include "config_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "helpers/captured_stream.h"
#include "helpers/temporary_directory.h"
#include "vocabulary.h"

namespace Tarnwick::Parser {
namespace {

using Entries = std::vector<std::string>;

class ConfigFileReading : public testing::Test {
protected:
    ConfigFile& write(std::string_view content) {
        file_.path = directory_.write("10-x.conf", content);
        file_.failed = false;
        return file_;
    }

    static std::string shown(const ConfigFileIterator& entry) {
        return entry.group() + '|' + std::string(entry.key()) + '|' + std::string(entry.value());
    }

    /// All entries of a file with this content, as "group|key|value".
    Entries entriesOf(std::string_view content) {
        Entries entries;
        for (ConfigFileIterator entry(write(content)); entry.hasEntry(); ++entry) {
            entries.push_back(shown(entry));
        }
        return entries;
    }

    /// The record of a bad line.
    std::string recordOf(const std::string& problem, char line, const std::string& text) const {
        return "ERROR: " + problem + file_.path + " (" + line + "): '" + text + "'\n";
    }

    /// A file with this one line yields nothing but the record.
    void refuses(const std::string& line, const std::string& problem) {
        EXPECT_EQ(entriesOf(line + '\n'), Entries{}) << line;
        EXPECT_TRUE(file_.failed) << line;
        EXPECT_EQ(log_.take(), recordOf(problem, '\1', line));
    }

    void accepts(const std::string& content, const Entries& entries) {
        EXPECT_EQ(entriesOf(content), entries);
        EXPECT_FALSE(file_.failed) << content;
        EXPECT_EQ(log_.take(), "");
    }

    Testing::TemporaryDirectory directory_;
    Testing::CapturedLog log_;
    ConfigFile file_{""};
};

TEST_F(ConfigFileReading, YieldsEachKeyWithItsGroup) {
    accepts("[A]\na=1\nb=2\n[B]\na=3\n", {"A|a|1", "A|b|2", "B|a|3"});
}

TEST_F(ConfigFileReading, YieldsKeysBeforeAnyHeaderWithTheEmptyGroup) {
    accepts("a=1\n[A]\n[]\na=2\n", {"|a|1", "|a|2"});
}

TEST_F(ConfigFileReading, SkipsCommentsAndBlankLines) {
    accepts("# a=1\n\n; b=2\n#\n;\na=1\n", {"|a|1"});
    accepts("#only\n\n;comments\n", {});
    accepts("", {});
    accepts("\n", {});
}

TEST_F(ConfigFileReading, KeepsEverythingAfterTheFirstEqualsSign) {
    accepts("key=\nkey=a=b\nkey=x # note\nkey= a; b \nkey=\"q\"\n",
            {"|key|", "|key|a=b", "|key|x # note", "|key| a; b ", "|key|\"q\""});
    accepts("key=a\r\n", {"|key|a\r"});
    accepts(std::string("key=a\0b\n", 8), {std::string("|key|a\0b", 8)});
    accepts("key=\xFF\t{}\n", {"|key|\xFF\t{}"});
}

TEST_F(ConfigFileReading, KeepsBlanksInKeysAndGroups) {
    accepts("my key = 1\n", {"|my key | 1"});
    accepts("[ a b ]\nk=v\n", {" a b |k|v"});
}

TEST_F(ConfigFileReading, YieldsTheSameKeyAsOftenAsItStands) {
    accepts("a=1\na=1\na=\n", {"|a|1", "|a|1", "|a|"});
}

TEST_F(ConfigFileReading, PermitsAllNameCharacters) {
    const std::string name = kPermittedNameCharacters;
    accepts("[" + name + "]\na" + name + "=1\n", {name + "|a" + name + "|1"});
}

TEST_F(ConfigFileReading, DecidesByTheFirstCharacterWhatALineIs) {
    const std::string starts = kPermittedNameCharacters.substr(1);
    for (int code = 0; code < 256; ++code) {
        const char first = static_cast<char>(code);
        const std::string line = first + std::string("k=v");
        if (first == '\n' || first == '#' || first == ';' || first == '[') {
            continue;  // No key lines and no errors, see the other tests.
        }
        if (starts.find(first) != std::string::npos) {
            accepts(line + '\n', {'|' + line.substr(0, 2) + "|v"});
        } else {
            refuses(line, "Unexpected line in ");
        }
    }
}

TEST_F(ConfigFileReading, RefusesLinesThatBeginUnexpectedly) {
    for (const char* line : {" key=value", "=value", "\tkey=value", "\r", "\"key\"=1", "{", "]"}) {
        refuses(line, "Unexpected line in ");
    }
}

TEST_F(ConfigFileReading, RefusesHeadersThatDoNotEndInABracket) {
    for (const char* line : {"[", "[Group", "[Group] ", "[Group]\r", "[Group]x", "[bad"}) {
        refuses(line, "Could not parse line as group in ");
    }
}

TEST_F(ConfigFileReading, RefusesGroupNamesWithOtherCharacters) {
    for (const char* line : {"[a/b]", "[a\tb]", "[[]", "[]]", "[a=b]", "[\xC3\xA4]", "[#]"}) {
        refuses(line, "Group name contains invalid characters in ");
    }
}

TEST_F(ConfigFileReading, RefusesKeyLinesWithoutAnEqualsSign) {
    for (const char* line : {"key", "key value", "a#b", "k\xC3\xA4"}) {
        refuses(line, "Could not parse line as key in ");
    }
}

TEST_F(ConfigFileReading, RefusesKeysWithOtherCharacters) {
    for (const char* line : {"ke/y=1", "key\t=1", "k[0]=1", "k\xC3\xA4=1", "k\r=1"}) {
        refuses(line, "Key contains invalid characters in ");
    }
}

TEST_F(ConfigFileReading, ReadsOnAfterABadLine) {
    EXPECT_EQ(entriesOf("a=1\nbad\nb=2\n=\nc=3\n"), (Entries{"|a|1", "|b|2", "|c|3"}));
    EXPECT_TRUE(file_.failed);
    EXPECT_EQ(log_.take(), recordOf("Could not parse line as key in ", '\2', "bad") +
                               recordOf("Unexpected line in ", '\4', "="));
}

TEST_F(ConfigFileReading, KeepsTheGroupAfterABadHeader) {
    EXPECT_EQ(entriesOf("[A]\n[B/C]\na=1\n[D\nb=2\n"), (Entries{"A|a|1", "A|b|2"}));
    EXPECT_TRUE(file_.failed);
}

TEST_F(ConfigFileReading, KeepsTheEarlierKeyWhenABadKeyEndsTheFile) {
    ConfigFileIterator entry(write("a=1\nb/c=2\n"));
    ++entry;
    EXPECT_FALSE(entry.hasEntry());
    EXPECT_EQ(entry.key(), "a");
    EXPECT_EQ(entry.value(), "1");
}

TEST_F(ConfigFileReading, ShowsTheLineNumberAsOneCharacter) {
    EXPECT_EQ(entriesOf(std::string(64, '\n') + "[bad\n"), Entries{});
    EXPECT_EQ(log_.take(),
              "ERROR: Could not parse line as group in " + file_.path + " (A): '[bad'\n");
}

TEST_F(ConfigFileReading, ShowsTheLowEightBitsOfTheLineNumber) {
    for (const int line : {9, 10, 128, 255, 256, 257, 266, 65536 + 65}) {
        entriesOf(std::string(static_cast<std::size_t>(line - 1), '\n') + "?\n");
        EXPECT_EQ(log_.take(),
                  recordOf("Unexpected line in ", static_cast<char>(line & 0xFF), "?"));
    }
}

TEST_F(ConfigFileReading, FailsWithoutAWordOnWhatCannotBeRead) {
    for (const std::string& path : {directory_.path("missing"), directory_.path()}) {
        ConfigFile file(path);
        const ConfigFileIterator entry(file);
        EXPECT_FALSE(entry.hasEntry());
        EXPECT_TRUE(file.failed);
    }
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigFileReading, YieldsTheWholeLinesBeforeAReadThatFails) {
    ConfigFile file(directory_.write("failing.conf", "a=1\nb=cut off"));
    ConfigFileIterator entry(file);
    EXPECT_EQ(shown(entry), "|a|1");
    EXPECT_FALSE(file.failed);
    ++entry;
    EXPECT_FALSE(entry.hasEntry());
    EXPECT_TRUE(file.failed);
}

TEST_F(ConfigFileReading, FailsAnewAtEveryAdvanceOnWhatCannotBeRead) {
    for (const std::string& path :
         {directory_.path("missing"), directory_.write("failing.conf", "")}) {
        ConfigFile file(path);
        ConfigFileIterator entry(file);
        file.failed = false;
        ++entry;
        EXPECT_TRUE(file.failed) << path;
    }
}

TEST_F(ConfigFileReading, NeverClearsTheFailure) {
    write("a=1\n").failed = true;
    const ConfigFileIterator entry(file_);
    EXPECT_TRUE(entry.hasEntry());
    EXPECT_TRUE(file_.failed);
}

TEST_F(ConfigFileReading, BeginsAtTheEndOfAFileWithoutEntries) {
    for (const char* content : {"", "\n", "# comment\n", "[A]\n\n"}) {
        ConfigFile& file = write(content);
        EXPECT_TRUE(ConfigFileIterator(file) == ConfigFileIterator::end(file)) << content;
    }
}

TEST_F(ConfigFileReading, ReadsNoLineAtTheEnd) {
    ConfigFile& file = write("bad\n?\na=1\n");
    EXPECT_FALSE(ConfigFileIterator::end(file).hasEntry());
    EXPECT_FALSE(file.failed);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigFileReading, ReachesTheEndAfterTheLastEntry) {
    ConfigFile& file = write("a=1\n# comment\nb=2\n");
    ConfigFileIterator entry(file);
    EXPECT_FALSE(entry == ConfigFileIterator::end(file));
    ++entry;
    EXPECT_FALSE(entry == ConfigFileIterator::end(file));
    ++entry;
    EXPECT_TRUE(entry == ConfigFileIterator::end(file));
    ++entry;
    EXPECT_TRUE(entry == ConfigFileIterator::end(file));
}

TEST_F(ConfigFileReading, NeverReachesTheEndAfterAnUnterminatedLine) {
    for (const char* content : {"a=1\nb=2", "a=1\n# comment", "a=1\n[B]", "a=1\n?"}) {
        ConfigFile& file = write(content);
        ConfigFileIterator entry(file);
        for (int advance = 0; advance < 3; ++advance) {
            EXPECT_FALSE(entry == ConfigFileIterator::end(file)) << content;
            ++entry;
        }
    }
}

TEST_F(ConfigFileReading, StaysOnAnUnterminatedEntryButTellsThatItIsNoNewOne) {
    ConfigFile& file = write("a=1\n[B]\nb=2");
    ConfigFileIterator entry(file);
    ++entry;
    EXPECT_TRUE(entry.hasEntry());
    const ConfigFileIterator end = ConfigFileIterator::end(file);
    ++entry;
    EXPECT_FALSE(entry.hasEntry());
    EXPECT_EQ(shown(entry), "B|b|2");
    EXPECT_FALSE(entry == end);
    EXPECT_FALSE(file.failed);
}

TEST_F(ConfigFileReading, GoesOnShowingTheLastEntryHoweverMuchIsReadAfterIt) {
    const std::string comment = '#' + std::string(200000, 'x');
    for (const char* end : {"", "\n", "\nbad/key=1\n", "\n[B"}) {
        ConfigFileIterator entry(write("[A]\na=1\n" + comment + end));
        for (int advance = 0; advance < 3; ++advance) {
            ++entry;
            EXPECT_FALSE(entry.hasEntry());
            EXPECT_EQ(shown(entry), "A|a|1") << end;
        }
    }
}

TEST_F(ConfigFileReading, YieldsEntriesOnBothSidesOfALongComment) {
    const std::string comment = '#' + std::string(200000, 'x') + '\n';
    accepts("a=1\n" + comment + "b=2\n" + comment + comment + "c=3", {"|a|1", "|b|2", "|c|3"});
}

TEST_F(ConfigFileReading, YieldsNothingForOtherUnterminatedLastLines) {
    accepts("a=1\n# comment", {"|a|1"});
    accepts("a=1\n[B]", {"|a|1"});
    EXPECT_EQ(entriesOf("a=1\nbad"), (Entries{"|a|1"}));
    EXPECT_TRUE(file_.failed);
    EXPECT_EQ(log_.take(), recordOf("Could not parse line as key in ", '\2', "bad"));
}

TEST_F(ConfigFileReading, EqualsAnotherAtTheSamePlaceOfTheSameRecordAlone) {
    ConfigFile& file = write("a=1\nb=2\n");
    ConfigFile twin(file.path);
    ConfigFileIterator first(file);
    EXPECT_TRUE(first == ConfigFileIterator(file));
    EXPECT_FALSE(first == ConfigFileIterator(twin));
    ++first;
    EXPECT_FALSE(first == ConfigFileIterator(file));
    EXPECT_FALSE(ConfigFileIterator::end(file) == ConfigFileIterator::end(twin));
}

TEST_F(ConfigFileReading, FindsWhatIsAddedToTheFileAfterItsEnd) {
    ConfigFile& file = write("[A]\na=1\n");
    ConfigFileIterator entry(file);
    ++entry;
    EXPECT_TRUE(entry == ConfigFileIterator::end(file));
    std::ofstream(file.path, std::ios::app) << "b=2\n";
    EXPECT_FALSE(entry == ConfigFileIterator::end(file));
    ++entry;
    EXPECT_TRUE(entry.hasEntry());
    EXPECT_EQ(shown(entry), "A|b|2");
}

TEST_F(ConfigFileReading, ReadsLongLines) {
    const std::string value(100000, 'x');
    accepts("a=" + value + "\nb=1\n", {"|a|" + value, "|b|1"});
}

// --- Lines ---

struct LineRow {
    std::string line;
    ConfigLine::Kind kind;
    std::string name;
    std::size_t offset;  // of the name in the line
    Problem problem = Problem::UnexpectedLine;
};

TEST(ConfigLines, AreToldApartAndShowWhereTheirFaultStands) {
    using Kind = ConfigLine::Kind;
    const LineRow rows[] = {
        {"# x", Kind::Comment, "", 0},
        {"; x", Kind::Comment, "", 0},
        {"[a b]", Kind::Group, "a b", 1},
        {"[]", Kind::Group, "", 1},
        {"my key =v", Kind::Entry, "my key ", 0},
        {" k=v", Kind::Fault, " ", 0, Problem::UnexpectedLine},
        {"\xef\xbb\xbf[a]", Kind::Fault, "\xef", 0, Problem::UnexpectedLine},
        {"[a", Kind::Fault, "", 2, Problem::GroupNotClosed},
        {"[", Kind::Fault, "", 1, Problem::GroupNotClosed},
        {"[a] # x", Kind::Fault, " # x", 3, Problem::GroupNotClosed},
        {"[a/b]", Kind::Fault, "/", 2, Problem::GroupCharacters},
        {"key", Kind::Fault, "", 3, Problem::KeyWithoutValue},
        {"key value", Kind::Fault, "", 3, Problem::KeyWithoutValue},
        {"key: value", Kind::Fault, "", 3, Problem::KeyWithoutValue},
        {"ke/y=v", Kind::Fault, "/", 2, Problem::KeyCharacters},
    };
    for (const LineRow& row : rows) {
        const ConfigLine line = parseConfigLine(row.line);
        EXPECT_EQ(line.kind, row.kind) << row.line;
        EXPECT_EQ(line.name, row.name) << row.line;
        EXPECT_EQ(line.problem, row.problem) << row.line;
        if (row.kind != Kind::Comment) {
            EXPECT_EQ(line.name.data() - row.line.data(), std::ptrdiff_t(row.offset)) << row.line;
        }
    }
    EXPECT_EQ(parseConfigLine("").kind, Kind::Blank);
    EXPECT_EQ(parseConfigLine("k=a=b ").value, "a=b ");
}

TEST_F(ConfigFileReading, TellsTheColumnsOfWhatIsAtFault) {
    std::vector<std::string> columns;
    const DiagnosticSink sink = [&](const Diagnostic& found) {
        columns.push_back(std::to_string(found.place.line) + ":" +
                          std::to_string(found.place.firstColumn) + "-" +
                          std::to_string(found.place.lastColumn));
    };
    const ConfigFileIterator entry(write("[a] # x\nkey value\nke/y=v\n"), sink);
    EXPECT_EQ(columns, (std::vector<std::string>{"1:4-7", "2:4-4", "3:3-3"}));
}

TEST_F(ConfigFileReading, TellsOnceThatAFileCannotBeRead) {
    std::vector<Problem> problems;
    file_.path = directory_.path("missing");
    ConfigFileIterator entry(file_,
                             [&](const Diagnostic& found) { problems.push_back(found.problem); });
    ++entry;
    EXPECT_EQ(problems, std::vector<Problem>{Problem::FileUnreadable});
}

}  // namespace
}  // namespace Tarnwick::Parser
