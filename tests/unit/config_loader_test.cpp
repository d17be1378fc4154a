#include <gtest/gtest.h>

#include <stdexcept>

#include "config_parser.h"
#include "helpers/captured_stream.h"
#include "helpers/process_state.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser {
namespace {

using Texts = std::vector<std::string>;

class ConfigLoading : public testing::Test {
protected:
    std::string write(const std::string& name, std::string_view content) {
        return directory_.write(name, content);
    }

    /// Loads a file with these lines in the group "G".
    bool loadLines(const std::string& lines) {
        return parser_.loadFile(write("lines.conf", "[G]\n" + lines));
    }

    LoadResult load(const Texts& names) {
        Texts paths;
        for (const std::string& name : names) {
            paths.push_back(directory_.path(name));
        }
        return parser_.loadConfigs(paths);
    }

    Texts valuesOf(const std::string& key) const {
        Texts values;
        if (parser_.hasKey("G", key)) {
            parser_.getValue("G", key, values);
        }
        return values;
    }

    Testing::TemporaryDirectory directory_;
    Testing::CapturedLog log_;
    ConfigParser parser_{-1};
};

// --- Pieces of a value ---

TEST_F(ConfigLoading, StoresEveryPieceOfAValue) {
    EXPECT_TRUE(loadLines("K=a;b\nK=c\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"a", "b", "c"}));
}

TEST_F(ConfigLoading, SkipsEmptyPieces) {
    EXPECT_TRUE(loadLines("K=two;;words;\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"two", "words"}));
}

TEST_F(ConfigLoading, LeavesTheKeyAloneForASingleSemicolon) {
    EXPECT_TRUE(loadLines("K=a\nK=;\nL=;;\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"a"}));
    EXPECT_FALSE(parser_.hasKey("G", "L"));
}

TEST_F(ConfigLoading, RemovesTheKeyForAnEmptyValue) {
    EXPECT_TRUE(loadLines("K=a\nK=\n"));
    EXPECT_FALSE(parser_.hasKey("G", "K"));
    EXPECT_TRUE(parser_.hasGroup("G"));
    EXPECT_TRUE(loadLines("K=a\nK=\nK=b\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"b"}));
}

TEST_F(ConfigLoading, TrimsWhatAPieceExpandsTo) {
    EXPECT_TRUE(loadLines("K = a ; b\n"));
    EXPECT_EQ(valuesOf("K "), (Texts{"a", "b"}));
}

TEST_F(ConfigLoading, CutsAValueBeforeItLooksAtTemplates) {
    parser_.setVariable("a", "x");
    EXPECT_TRUE(loadLines("K=${a;b}\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"b}"}));
    EXPECT_EQ(log_.take(), "ERROR: Invalid template substitution, missing '}': ${a\n");
}

TEST_F(ConfigLoading, DropsAPieceWhoseTemplateFailsAndStillLoadsTheFile) {
    EXPECT_TRUE(loadLines("K=a;${NONE};b\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"a", "b"}));
    EXPECT_EQ(log_.take(), "ERROR: No such template 'NONE'\n");
}

TEST_F(ConfigLoading, ThrowsForAPieceOfWhiteSpaceAloneAndNamesItsPlace) {
    try {
        (void)loadLines("K = a\nName= \n");
        FAIL() << "nothing was thrown";
    } catch (const std::length_error& error) {
        EXPECT_EQ(error.what(), directory_.path("lines.conf") +
                                    ":3: key 'Name' of group 'G': "
                                    "a text of white space alone cannot be trimmed");
    }
    EXPECT_EQ(valuesOf("K "), (Texts{"a"}));
}

// --- Modes ---

TEST_F(ConfigLoading, TakesEveryKeyWhenNoneIsRegistered) {
    EXPECT_TRUE(loadLines("K=a\nL=b\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"a"}));
    EXPECT_EQ(valuesOf("L"), (Texts{"b"}));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigLoading, SkipsKeysThatAreNotRegisteredWithoutAWord) {
    parser_.addKey("G", "K", KeyMode::Append);
    EXPECT_TRUE(loadLines("K=a\nL=b\nL=\nM=${NONE}\n"));
    EXPECT_EQ(log_.take(), "");
    EXPECT_EQ(valuesOf("K"), (Texts{"a"}));
    EXPECT_FALSE(parser_.hasKey("G", "L"));
    EXPECT_EQ(log_.take(), "WARNING: G/L has not been added to the parser\n");
}

TEST_F(ConfigLoading, TakesRegisteredKeysOfEveryGroupAndOfTheEmptyOne) {
    parser_.addKey("", "K", KeyMode::Append);
    parser_.addKey("G", "K", KeyMode::Append);
    parser_.addKey("I", "K", KeyMode::Append);
    EXPECT_TRUE(parser_.loadFile(write("a.conf",
                                       "K=a\nL=b\n[G]\nK=c\n[H]\nK=d\n[I]\nL=e\nK=f\n[G]\nK=g\n"
                                       "[]\nK=h\n")));
    EXPECT_EQ(valuesOf("K"), (Texts{"c", "g"}));
    EXPECT_EQ(parser_.valueList("", "K").size(), 2U);
    EXPECT_EQ(parser_.valueList("I", "K").size(), 1U);
    EXPECT_FALSE(parser_.hasGroup("H"));
}

TEST_F(ConfigLoading, KeepsTheLastPieceInReplaceMode) {
    parser_.addKey("G", "K", KeyMode::Replace);
    EXPECT_TRUE(loadLines("K=a;b\nK=c;d;\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"d"}));
}

TEST_F(ConfigLoading, ReplacesNothingByAnEmptyPiece) {
    parser_.addKey("G", "K", KeyMode::Replace);
    EXPECT_TRUE(loadLines("K=a;;\nK=;\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"a"}));
}

TEST_F(ConfigLoading, StoresAPieceThatExpandsToNothingInReplaceModeAlone) {
    parser_.addKey("G", "R", KeyMode::Replace);
    parser_.addKey("G", "A", KeyMode::Append);
    parser_.setVariable("EMPTY", "");
    EXPECT_TRUE(loadLines("R=a;${EMPTY}\nA=a;${EMPTY}\n"));
    EXPECT_EQ(valuesOf("R"), (Texts{""}));
    EXPECT_EQ(valuesOf("A"), (Texts{"a"}));
}

TEST_F(ConfigLoading, KeepsTheValueWhenALaterPieceFailsInReplaceMode) {
    parser_.addKey("G", "K", KeyMode::Replace);
    EXPECT_TRUE(loadLines("K=a;${NONE}\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"a"}));
}

TEST_F(ConfigLoading, ExpandsAndDropsTheValuesOfAnyOtherMode) {
    for (const int mode : {-2, 2, 7}) {
        ConfigParser parser(-1);
        parser.addKey("G", "K", static_cast<KeyMode>(mode));
        EXPECT_TRUE(parser.loadFile(write("lines.conf", "[G]\nK=a;${NONE}\n")));
        EXPECT_EQ(log_.take(), "ERROR: No such template 'NONE'\n");
        EXPECT_FALSE(parser.hasKey("G", "K"));
    }
}

TEST_F(ConfigLoading, SkipsAKeyWhoseModeIsThatOfNone) {
    parser_.addKey("G", "K", static_cast<KeyMode>(-1));
    EXPECT_TRUE(loadLines("K=a;${NONE}\n"));
    EXPECT_FALSE(parser_.hasKey("G", "K"));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigLoading, RemovesAKeyWhateverItsMode) {
    for (const int mode : {0, 1, 7}) {
        ConfigParser parser(-1);
        parser.addKey("G", "K", static_cast<KeyMode>(mode));
        (void)parser.valueList("G", "K");
        EXPECT_TRUE(parser.loadFile(write("lines.conf", "[G]\nK=\n")));
        EXPECT_FALSE(parser.hasKey("G", "K"));
    }
}

TEST_F(ConfigLoading, ExpandsTemplatesWithTheVariablesOfTheMoment) {
    parser_.setVariable("HOME", "/home/user");
    EXPECT_TRUE(loadLines("K=${HOME}/data\nL=${config:G/K};plain\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"/home/user/data"}));
    EXPECT_EQ(valuesOf("L"), (Texts{"/home/user/data", "plain"}));
}

// --- Files ---

TEST_F(ConfigLoading, TakesEachEntryOfAnUnterminatedFileOnce) {
    EXPECT_TRUE(parser_.loadFile(write("a.conf", "[G]\nK=a\nK=b")));
    EXPECT_EQ(valuesOf("K"), (Texts{"a", "b"}));
}

TEST_F(ConfigLoading, InventsNothingAfterAnUnterminatedCommentHeaderOrBadLine) {
    for (const char* last : {"# comment", "[H]", "[H", "bad", "?"}) {
        ConfigParser parser(-1);
        const bool isGood = last[0] == '#' || std::string(last) == "[H]";
        EXPECT_EQ(parser.loadFile(write("a.conf", std::string("[G]\nK=a\n") + last)), isGood);
        Texts values;
        parser.getValue("G", "K", values);
        EXPECT_EQ(values, (Texts{"a"})) << last;
        EXPECT_FALSE(parser.hasGroup("H")) << last;
    }
}

TEST_F(ConfigLoading, LoadsAFileWithoutEntries) {
    EXPECT_TRUE(parser_.loadFile(write("a.conf", "")));
    EXPECT_TRUE(parser_.loadFile(write("b.conf", "# comment\n\n[G]\n")));
    EXPECT_FALSE(parser_.hasGroup("G"));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigLoading, BeginsEveryFileInTheEmptyGroup) {
    EXPECT_TRUE(parser_.loadFile(write("a.conf", "[G]\nK=a\n")));
    EXPECT_TRUE(parser_.loadFile(write("b.conf", "K=b\n")));
    EXPECT_EQ(valuesOf("K"), (Texts{"a"}));
    EXPECT_TRUE(parser_.hasKey("", "K"));
}

TEST_F(ConfigLoading, ReportsAFileThatFailed) {
    const std::string path = write("a.conf", "[G]\nK=a\nbad\nK=b\n");
    EXPECT_FALSE(parser_.loadFile(path));
    EXPECT_EQ(log_.take(), "ERROR: Could not parse line as key in " + path +
                               " (\x03): 'bad'\nERROR: Failed to load config from '" + path +
                               "'\n");
}

TEST_F(ConfigLoading, KeepsWhatStoodBeforeABadLineAndTakesNothingAfterIt) {
    EXPECT_FALSE(loadLines("K=a\nbad\nK=b\n"));
    EXPECT_EQ(valuesOf("K"), (Texts{"a"}));
}

TEST_F(ConfigLoading, FailsOnAFileThatIsNotThereAndOnADirectory) {
    for (const std::string& path : {directory_.path("missing.conf"), directory_.path()}) {
        EXPECT_FALSE(parser_.loadFile(path));
        EXPECT_EQ(log_.take(), "ERROR: Failed to load config from '" + path + "'\n");
    }
}

// --- Directories ---

TEST_F(ConfigLoading, LoadsTheFilesOfADirectoryInByteOrder) {
    write("d/9.conf", "[G]\nK=9\n");
    write("d/10.conf", "[G]\nK=10\n");
    write("d/a.conf", "[G]\nK=a\n");
    write("d/B.conf", "[G]\nK=B\n");
    EXPECT_EQ(load({"d"}), LoadResult::Ok);
    EXPECT_EQ(valuesOf("K"), (Texts{"10", "9", "B", "a"}));
}

TEST_F(ConfigLoading, UsesTheLastFileForASingleValue) {
    write("d/b.conf", "[G]\nK=later\n");
    write("d/a.conf", "[G]\nK=earlier\n");
    EXPECT_EQ(load({"d"}), LoadResult::Ok);
    std::string value;
    parser_.getValue("G", "K", value);
    EXPECT_EQ(value, "later");
}

TEST_F(ConfigLoading, LoadsAllOfADirectoryBeforeTheNext) {
    write("one/z.conf", "[G]\nK=one\n");
    write("two/a.conf", "[G]\nK=two\n");
    EXPECT_EQ(load({"one", "two/", "one"}), LoadResult::Ok);
    EXPECT_EQ(valuesOf("K"), (Texts{"one", "two", "one"}));
}

TEST_F(ConfigLoading, ReplacesAcrossFilesInReplaceMode) {
    parser_.addKey("G", "K", KeyMode::Replace);
    write("d/a.conf", "[G]\nK=A\n");
    write("d/b.conf", "[G]\nK=B\n");
    EXPECT_EQ(load({"d"}), LoadResult::Ok);
    EXPECT_EQ(valuesOf("K"), (Texts{"B"}));
}

TEST_F(ConfigLoading, UnsetsInALaterFileWhatAnEarlierOneSet) {
    write("d/a.conf", "[G]\nK=A\n");
    write("d/b.conf", "[G]\nK=\n");
    EXPECT_EQ(load({"d"}), LoadResult::Ok);
    EXPECT_FALSE(parser_.hasKey("G", "K"));
}

TEST_F(ConfigLoading, TakesVisibleFilesWithTheRightEndingAlone) {
    for (const char* name : {"d/.hidden.conf", "d/a.conf~", "d/a.CONF", "d/a", "d/sub/a.conf"}) {
        write(name, "[G]\nK=wrong\n");
    }
    write("d/a.conf", "[G]\nK=right\n");
    EXPECT_EQ(load({"d"}), LoadResult::Ok);
    EXPECT_EQ(valuesOf("K"), (Texts{"right"}));
}

TEST_F(ConfigLoading, MakesTheDirectorysPathAPartOfThePattern) {
    write("d1/a.conf", "[G]\nK=1\n");
    write("d2/a.conf", "[G]\nK=2\n");
    write("d3/a.conf", "[G]\nK=3\n");
    EXPECT_EQ(load({"d[12]"}), LoadResult::Ok);
    EXPECT_EQ(valuesOf("K"), (Texts{"1", "2"}));
}

TEST_F(ConfigLoading, PassesOverDirectoriesWithoutFiles) {
    directory_.makeDirectory("empty");
    write("d/a.conf", "[G]\nK=a\n");
    EXPECT_EQ(load({"missing", "empty", "d", "missing"}), LoadResult::Ok);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigLoading, FindsNoConfigurationWithoutFilesAndSaysNothing) {
    directory_.makeDirectory("empty");
    EXPECT_EQ(load({"missing", "empty"}), LoadResult::NoConfiguration);
    EXPECT_EQ(load({}), LoadResult::NoConfiguration);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigLoading, CallsAnEmptyFileAConfiguration) {
    write("d/a.conf", "");
    EXPECT_EQ(load({"d"}), LoadResult::Ok);
}

TEST_F(ConfigLoading, SearchesTheRootDirectoryForAnEmptyName) {
    EXPECT_FALSE(parser_.loadDirectory(""));
    EXPECT_EQ(log_.take(), "ERROR: No configuration to read in /\n");
}

TEST_F(ConfigLoading, StopsAtTheFirstFileThatFails) {
    write("one/a.conf", "[G]\nK=a\n");
    const std::string bad = write("one/b.conf", "[G]\nK=b\n[bad\nK=c\n");
    write("one/c.conf", "[G]\nK=d\n");
    write("two/a.conf", "[G]\nK=e\n");
    EXPECT_EQ(load({"one", "two"}), LoadResult::InvalidConfiguration);
    EXPECT_EQ(valuesOf("K"), (Texts{"a", "b"}));
    EXPECT_EQ(log_.take(), "ERROR: Could not parse line as group in " + bad +
                               " (\x03): '[bad'\nERROR: Failed to load config from '" + bad +
                               "'\nERROR: Invalid configuration in " + bad + "\n");
}

TEST_F(ConfigLoading, FailsOnADirectoryThatLooksLikeAFile) {
    const std::string path = directory_.makeDirectory("d/a.conf") + '/';
    EXPECT_EQ(load({"d"}), LoadResult::InvalidConfiguration);
    EXPECT_EQ(log_.take(), "ERROR: Failed to load config from '" + path +
                               "'\nERROR: Invalid configuration in " + path + "\n");
}

TEST_F(ConfigLoading, CountsTheResultsFromZero) {
    EXPECT_EQ(static_cast<int>(LoadResult::Ok), 0);
    EXPECT_EQ(static_cast<int>(LoadResult::NoConfiguration), 1);
    EXPECT_EQ(static_cast<int>(LoadResult::InvalidConfiguration), 2);
}

// --- One directory ---

TEST_F(ConfigLoading, LoadsOneDirectory) {
    write("d/b.conf", "[G]\nK=b\n");
    write("d/a.conf", "[G]\nK=a\n");
    EXPECT_TRUE(parser_.loadDirectory(directory_.path("d")));
    EXPECT_EQ(valuesOf("K"), (Texts{"a", "b"}));
    EXPECT_TRUE(parser_.loadDirectory(directory_.path("d/")));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(ConfigLoading, ReportsOneDirectoryWithoutFiles) {
    const std::string path = directory_.makeDirectory("empty");
    EXPECT_FALSE(parser_.loadDirectory(path));
    EXPECT_FALSE(parser_.loadDirectory(path + '/'));
    const std::string record = "ERROR: No configuration to read in " + path + "/\n";
    EXPECT_EQ(log_.take(), record + record);
}

TEST_F(ConfigLoading, GoesOnAfterAFileOfOneDirectoryFailed) {
    const std::string bad = write("d/a.conf", "[G]\nK=a\n?\n");
    write("d/b.conf", "[G]\nK=b\n");
    EXPECT_FALSE(parser_.loadDirectory(directory_.path("d")));
    EXPECT_EQ(valuesOf("K"), (Texts{"a", "b"}));
    EXPECT_EQ(log_.take(), "ERROR: Unexpected line in " + bad +
                               " (\x03): '?'\nERROR: Failed to load config from '" + bad + "'\n");
}

}  // namespace
}  // namespace Tarnwick::Parser
