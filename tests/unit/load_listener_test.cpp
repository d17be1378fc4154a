#include "load_event.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "config_parser.h"
#include "helpers/captured_stream.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser {
namespace {

using Kind = LoadEvent::Kind;
using Told = std::vector<std::string>;

std::string placeOf(const Place& place) {
    return std::to_string(place.line) + ":" + std::to_string(place.firstColumn) + "-" +
           std::to_string(place.lastColumn);
}

std::string numberOf(const Diagnostic* found) {
    return std::to_string(static_cast<int>(found->problem));
}

// One event in a few words.
std::string shown(const LoadEvent& event) {
    const std::string name = std::string(event.group) + "/" + std::string(event.key);
    const std::string place = placeOf(event.place) + " ";
    switch (event.kind) {
        case Kind::File:
            return "file";
        case Kind::Stored:
            return place + name + " stored <" + event.value->text + ">";
        case Kind::Removed:
            return place + name + " removed " + std::to_string(event.count);
        case Kind::Dropped:
            return place + name + " dropped <" + std::string(event.piece) + "> for " +
                   numberOf(event.fault);
        case Kind::Fault:
            return place + "fault " + numberOf(event.fault);
    }
    return "";
}

std::string number(Problem problem) {
    return std::to_string(static_cast<int>(problem));
}

class LoadListening : public testing::Test {
protected:
    Told toldOf(std::string_view content) {
        path_ = directory_.write("a.conf", content);
        Told told;
        isLoaded_ = parser_.loadFile(path_, [&](const LoadEvent& event) {
            EXPECT_EQ(event.place.file, path_);
            told.push_back(shown(event));
        });
        return told;
    }

    Testing::TemporaryDirectory directory_;
    Testing::CapturedLog log_;
    ConfigParser parser_{-1};
    std::string path_;
    bool isLoaded_ = false;
};

TEST_F(LoadListening, HearsEachPieceWhereItStands) {
    parser_.setVariable("HOME", "/x");
    EXPECT_EQ(toldOf("[G]\nK=a;${HOME}b\n"),
              (Told{"file", "2:3-3 G/K stored <a>", "2:5-12 G/K stored </xb>"}));
}

TEST_F(LoadListening, SeesAValueAsItStandsInTheStore) {
    path_ = directory_.write("a.conf", "K=a\n");
    const ConfigValue* stored = nullptr;
    EXPECT_TRUE(parser_.loadFile(path_, [&](const LoadEvent& event) { stored = event.value; }));
    EXPECT_EQ(stored, &parser_.valueList("", "K").front());
}

TEST_F(LoadListening, HearsHowManyValuesAnEmptyOneRemoves) {
    EXPECT_EQ(toldOf("K=a;b\nK=\nK=\n"), (Told{"file", "1:3-3 /K stored <a>", "1:5-5 /K stored <b>",
                                               "2:3-3 /K removed 2", "3:3-3 /K removed 0"}));
}

TEST_F(LoadListening, HearsOfEmptyPieces) {
    const std::string why = " dropped <> for " + number(Problem::PieceEmpty);
    EXPECT_EQ(toldOf("K=;\nK=a;;b\n"), (Told{"file", "1:3-3 /K" + why, "2:3-3 /K stored <a>",
                                             "2:5-5 /K" + why, "2:6-6 /K stored <b>"}));
}

TEST_F(LoadListening, HearsOfAValueThatCameToNothing) {
    parser_.setVariable("NONE", "");
    EXPECT_EQ(toldOf("K=${NONE}\n"),
              (Told{"file", "1:3-9 /K dropped <${NONE}> for " + number(Problem::ValueEmpty)}));
    parser_.addKey("", "K", KeyMode::Replace);
    EXPECT_EQ(toldOf("K=${NONE}\n"), (Told{"file", "1:3-9 /K stored <>"}));
}

TEST_F(LoadListening, HearsOfAModeThatStoresNothing) {
    parser_.addKey("", "K", static_cast<KeyMode>(7));
    EXPECT_EQ(toldOf("K=a\n"),
              (Told{"file", "1:3-3 /K dropped <a> for " + number(Problem::ModeWithoutName)}));
}

TEST_F(LoadListening, HearsNothingOfKeysThatAreNotRegistered) {
    parser_.addKey("", "Other", KeyMode::Append);
    EXPECT_EQ(toldOf("K=a\nK=\n"), Told{"file"});
}

TEST_F(LoadListening, HearsATemplatesFaultInItsPlaceAndThenOfTheDroppedPiece) {
    const std::string unknown = number(Problem::UnknownVariable);
    EXPECT_EQ(toldOf("K=a;b ${NOPE}\n"),
              (Told{"file", "1:3-3 /K stored <a>", "1:7-13 fault " + unknown,
                    "1:5-13 /K dropped <b ${NOPE}> for " + unknown}));
    EXPECT_EQ(log_.take(), "ERROR: No such template 'NOPE'\n");
}

TEST_F(LoadListening, HearsOfASourceWithoutATextAlsoWhenTheLogDoesNot) {
    const std::string missing = number(Problem::EnvironmentMissing);
    EXPECT_EQ(toldOf("K=${env:TW_NOT_SET}\n"),
              (Told{"file", "1:3-19 fault " + missing,
                    "1:3-19 /K dropped <${env:TW_NOT_SET}> for " + missing}));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(LoadListening, HearsEveryFaultUpToTheNextEntryAndThenOfTheFile) {
    EXPECT_EQ(toldOf("K=a\n=\n[x\n-\nK=b\n!\n"),
              (Told{"file", "1:3-3 /K stored <a>", "2:1-1 fault " + number(Problem::UnexpectedLine),
                    "3:3-3 fault " + number(Problem::GroupNotClosed),
                    "4:2-2 fault " + number(Problem::KeyWithoutValue),
                    "0:0-0 fault " + number(Problem::FileFailed)}));
    EXPECT_FALSE(isLoaded_);
}

TEST_F(LoadListening, HearsOfAFileThatCannotBeRead) {
    Told told;
    path_ = directory_.path("missing.conf");
    EXPECT_FALSE(
        parser_.loadFile(path_, [&](const LoadEvent& event) { told.push_back(shown(event)); }));
    EXPECT_EQ(told, (Told{"file", "0:0-0 fault " + number(Problem::FileUnreadable),
                          "0:0-0 fault " + number(Problem::FileFailed)}));
}

TEST_F(LoadListening, HearsOfABlankValueBeforeItsException) {
    Told told;
    path_ = directory_.write("a.conf", "K=a; \n");
    EXPECT_THROW((void)parser_.loadFile(
                     path_, [&](const LoadEvent& event) { told.push_back(shown(event)); }),
                 std::length_error);
    EXPECT_EQ(told.back(), "1:5-5 fault " + number(Problem::ValueBlank));
}

TEST_F(LoadListening, HearsWhatTheTemplatesOfABlankValueCameTo) {
    path_ = directory_.write("a.conf", "K=${BLANK}\n");
    parser_.setVariable("BLANK", " ");
    std::string text;
    const auto listener = [&](const LoadEvent& event) {
        if (event.kind == LoadEvent::Kind::Fault) {
            ASSERT_EQ(event.templates.size(), 1U);
            EXPECT_EQ(event.templates[0].firstColumn, 3U);
            text = event.templates[0].text;
        }
    };
    EXPECT_THROW((void)parser_.loadFile(path_, listener), std::length_error);
    EXPECT_EQ(text, " ");
}

TEST_F(LoadListening, HearsOfABlankNameInAnEnvironmentFileWithItsPath) {
    const std::string variables = directory_.write("variables", " =x\n");
    path_ = directory_.write("a.conf", "K=${envfile:" + variables + ":V}\n");
    std::string blankFile;
    try {
        (void)parser_.loadFile(path_, [&](const LoadEvent& event) {
            blankFile = event.fault != nullptr ? event.fault->path : "";
        });
        FAIL() << "nothing was thrown";
    } catch (const std::length_error& error) {
        EXPECT_EQ(error.what(), path_ + ":1: key 'K' of group '': environment file '" + variables +
                                    "': a text of white space alone cannot be trimmed");
    }
    EXPECT_EQ(blankFile, variables);
}

TEST_F(LoadListening, HearsWhatAFaultIsAbout) {
    path_ = directory_.write("a.conf", "[G]\nK=a; ;b\n");
    std::string about;
    EXPECT_THROW((void)parser_.loadFile(path_,
                                        [&](const LoadEvent& event) {
                                            about.assign(event.group).append("|");
                                            about.append(event.key).append("|");
                                            about.append(event.entry).append("|");
                                            about.append(event.piece);
                                            if (event.fault != nullptr) {
                                                about.append("|").append(event.fault->text);
                                            }
                                        }),
                 std::length_error);
    EXPECT_EQ(about, "G|K|a; ;b| | ");
}

TEST_F(LoadListening, HearsALastLineWithoutALineFeedOnce) {
    EXPECT_EQ(toldOf("K=a\nK=b"), (Told{"file", "1:3-3 /K stored <a>", "2:3-3 /K stored <b>"}));
    EXPECT_TRUE(isLoaded_);
}

TEST_F(LoadListening, HearsTheTemplatesOfEachPieceAlone) {
    parser_.setVariable("A", "1");
    path_ = directory_.write("a.conf", "K=${A};${A}${A};x\n");
    std::vector<std::size_t> templates;
    (void)parser_.loadFile(
        path_, [&](const LoadEvent& event) { templates.push_back(event.templates.size()); });
    EXPECT_EQ(templates, (std::vector<std::size_t>{0, 1, 2, 0}));
}

TEST_F(LoadListening, HearsOfABlankTextThatIsExpandedAlone) {
    Told told;
    ConfigValue value;
    EXPECT_THROW((void)parser_.parseTemplates(
                     "  ", value, [&](const LoadEvent& event) { told.push_back(shown(event)); }),
                 std::length_error);
    EXPECT_EQ(told, Told{"0:1-2 fault " + number(Problem::ValueBlank)});
}

TEST_F(LoadListening, HearsATextThatIsAViewOfTheValueItBecomes) {
    parser_.setVariable("HOME", std::string(100, 'x'));
    ConfigValue value;
    value.text = "a longer text with ${HOME} in it";
    const std::string written = value.text;
    std::string piece;
    EXPECT_TRUE(parser_.parseTemplates(value.text, value,
                                       [&](const LoadEvent& event) { piece = event.piece; }));
    EXPECT_EQ(piece, written);
}

TEST_F(LoadListening, DoesNotTakeTheListenersExceptionForABlankValue) {
    path_ = directory_.write("a.conf", "K=a\n");
    const ConfigParser other(-1);
    Told told;
    const LoadListener listener = [&](const LoadEvent& event) {
        told.push_back(shown(event));
        ConfigValue value;
        (void)other.parseTemplates("  ", value);
    };
    try {
        (void)parser_.loadFile(path_, listener);
        FAIL() << "nothing was thrown";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "a text of white space alone cannot be trimmed");
    }
    EXPECT_EQ(told, Told{"file"});
}

TEST_F(LoadListening, HearsWhatEachTemplateCameTo) {
    parser_.setVariable("HOME", "/x");
    path_ = directory_.write("a.conf", "K=a;${HOME}${config:G/L}\n");
    std::vector<TemplateOutcome> outcomes;
    (void)parser_.loadFile(path_, [&](const LoadEvent& event) {
        EXPECT_EQ(event.templates.empty(), event.piece != "${HOME}${config:G/L}");
        outcomes.assign(event.templates.begin(), event.templates.end());
    });
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0].text, "/x");
    EXPECT_EQ(outcomes[0].firstColumn, 5U);
    EXPECT_EQ(outcomes[0].lastColumn, 11U);
    EXPECT_EQ(outcomes[1].result, TemplateResult::Reference);
    EXPECT_EQ(outcomes[1].firstColumn, 12U);
}

TEST_F(LoadListening, PassesOnWhatTheListenerThrowsAsItIs) {
    path_ = directory_.write("a.conf", "K=${NOPE}\n");
    const LoadListener listener = [](const LoadEvent& event) {
        if (event.kind == Kind::Fault) {
            throw std::length_error("mine");
        }
    };
    try {
        (void)parser_.loadFile(path_, listener);
        FAIL() << "nothing was thrown";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "mine");
    }
}

TEST_F(LoadListening, HearsOfEveryFileOfADirectoryAndWhereLoadingStopped) {
    directory_.write("a.conf", "K=a\n");
    const std::string bad = directory_.write("b.conf", "bad\n");
    std::vector<std::string> files;
    std::string last;
    const LoadResult result = parser_.loadConfigs({directory_.path("")}, [&](const LoadEvent& e) {
        if (e.kind == Kind::File) {
            files.emplace_back(e.place.file);
        }
        last = shown(e) + " " + std::string(e.place.file);
    });
    EXPECT_EQ(result, LoadResult::InvalidConfiguration);
    EXPECT_EQ(files, (Told{directory_.path("a.conf"), bad}));
    EXPECT_EQ(last, "0:0-0 fault " + number(Problem::ConfigurationInvalid) + " " + bad);
}

TEST_F(LoadListening, HearsOfADirectoryWithoutFiles) {
    Told told;
    EXPECT_FALSE(parser_.loadDirectory(
        directory_.path(""), [&](const LoadEvent& event) { told.push_back(shown(event)); }));
    EXPECT_EQ(told, Told{"0:0-0 fault " + number(Problem::DirectoryEmpty)});
}

TEST_F(LoadListening, HearsOfATextThatIsExpandedAlone) {
    parser_.setVariable("HOME", "/x");
    Told told;
    const LoadListener listener = [&](const LoadEvent& event) { told.push_back(shown(event)); };
    ConfigValue value;
    EXPECT_TRUE(parser_.parseTemplates("a${HOME}", value, listener));
    EXPECT_FALSE(parser_.parseTemplates("a$", value, listener));
    const std::string dollar = number(Problem::TemplateDollar);
    EXPECT_EQ(told, (Told{"0:1-8 / stored <a/x>", "0:2-2 fault " + dollar,
                          "0:1-2 / dropped <a$> for " + dollar}));
}

}  // namespace
}  // namespace Tarnwick::Parser
