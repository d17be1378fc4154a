#include "logging/log_record.h"

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <tuple>

#include "logging/logger_fixture.h"

namespace Tarnwick::Parser::Logging {
namespace {

using Level = LoggerConfig::Level;
using EntryPoint = LogRecord (*)(const LoggerPointer&);

struct LevelRow {
    EntryPoint log;
    Level level;
    std::string label;
    int priority;
};
const std::vector<LevelRow> kLevels{
    {logCritical, LoggerConfig::LogCritical, "CRITICAL", 2},
    {logError, LoggerConfig::LogError, "ERROR", 3},
    {logWarning, LoggerConfig::LogWarning, "WARNING", 4},
    {logInfo, LoggerConfig::LogInfo, "INFO", 6},
    {logDebug, LoggerConfig::LogDebug, "DEBUG", 7},
};

class LogRecords : public LoggerTest {
protected:
    /// What one insertion shows in an error record.
    template <typename T>
    std::string shown(const T& value) {
        logError(logger_) << value;
        const std::string line = errors_.take();
        EXPECT_TRUE(line.starts_with("ERROR: ") && line.ends_with('\n')) << line;
        return line.substr(7, line.size() - 8);
    }

    /// The same of a debug record.
    template <typename T>
    std::string shownInDebug(const T& value) {
        logger_->setLevel(LoggerConfig::LogDebug);
        logDebug(logger_) << value;
        const std::string line = errors_.take();
        EXPECT_TRUE(line.starts_with("DEBUG: ") && line.ends_with('\n')) << line;
        return line.substr(7, line.size() - 8);
    }
};

// --- Levels and targets ---

TEST_F(LogRecords, BeginWithTheLabelOfTheirLevel) {
    logger_->setLevel(LoggerConfig::LogDebug);
    for (const LevelRow& row : kLevels) {
        row.log(logger_) << "text";
        EXPECT_EQ(errors_.take(), row.label + ": text\n");
    }
}

TEST_F(LogRecords, AreWrittenUpToTheLoggersLevel) {
    for (const LevelRow& threshold : kLevels) {
        logger_->setLevel(threshold.level);
        for (const LevelRow& row : kLevels) {
            row.log(logger_) << "text";
            EXPECT_EQ(errors_.take().empty(), row.level > threshold.level)
                << row.label << " at " << threshold.label;
        }
    }
}

TEST_F(LogRecords, GoToTheErrorStreamOrTheOutputStream) {
    logError(logger_) << "one";
    EXPECT_EQ(errors_.take(), "ERROR: one\n");
    EXPECT_EQ(output_.take(), "");
    logger_->setTarget(LoggerConfig::TargetStdout);
    logError(logger_) << "two";
    EXPECT_EQ(errors_.take(), "");
    EXPECT_EQ(output_.take(), "ERROR: two\n");
}

TEST_F(LogRecords, GoToTheLoggersFileLineByLine) {
    const std::string path = directory_.path("log");
    ASSERT_TRUE(logger_->setTarget(path));
    logError(logger_) << "one";
    EXPECT_EQ(Testing::contentOf(path), "ERROR: one\n");
    logWarning(logger_) << "two";
    logInfo(logger_) << "three";
    EXPECT_EQ(Testing::contentOf(path), "ERROR: one\nWARNING: two\n");
    EXPECT_EQ(output_.take() + errors_.take(), "");
}

TEST_F(LogRecords, GoToTheJournalWithTheirPriorityAndWithoutALabel) {
    logger_->setLevel(LoggerConfig::LogDebug);
    logger_->setTarget(LoggerConfig::TargetSystemd);
    for (const LevelRow& row : kLevels) {
        Testing::journal.clear();
        row.log(logger_) << "one " << 2 << " %s three";
        ASSERT_EQ(Testing::journal.size(), 1U) << row.label;
        EXPECT_EQ(Testing::journal[0].first, row.priority);
        EXPECT_EQ(Testing::journal[0].second, "one 2 %s three");
    }
    EXPECT_EQ(output_.take() + errors_.take(), "");
}

TEST_F(LogRecords, AboveTheLevelDoNotReachTheJournal) {
    logger_->setTarget(LoggerConfig::TargetSystemd);
    logInfo(logger_) << "text";
    EXPECT_TRUE(Testing::journal.empty());
}

TEST_F(LogRecords, WriteNothingWhenNothingWasInserted) {
    (void)logError(logger_);
    logger_->setTarget(LoggerConfig::TargetSystemd);
    (void)logError(logger_);
    EXPECT_EQ(errors_.take(), "");
    EXPECT_TRUE(Testing::journal.empty());
}

TEST_F(LogRecords, WriteALineForAnEmptyText) {
    logError(logger_) << "";
    EXPECT_EQ(errors_.take(), "ERROR: \n");
}

TEST_F(LogRecords, OfNoLoggerAreDiscarded) {
    logCritical(nullptr) << "text" << 1 << std::vector<int>{2};
    LogRecord(nullptr, LoggerConfig::LogCritical) << "text";
    EXPECT_EQ(output_.take() + errors_.take(), "");
    EXPECT_TRUE(Testing::journal.empty());
}

TEST_F(LogRecords, AreMadeOfALoggerAndALevelToo) {
    LogRecord(logger_.get(), LoggerConfig::LogError) << "text";
    EXPECT_EQ(errors_.take(), "ERROR: text\n");
}

TEST_F(LogRecords, AreWrittenWhenTheyAreDestroyed) {
    {
        LogRecord record = logError(logger_);
        record << "text";
        EXPECT_EQ(errors_.take(), "");
    }
    EXPECT_EQ(errors_.take(), "ERROR: text\n");
}

TEST_F(LogRecords, KeepTheTargetAndTheLevelOfTheirBirth) {
    {
        LogRecord record = logError(logger_);
        LogRecord disabled = logInfo(logger_);
        logger_->setTarget(LoggerConfig::TargetStdout);
        logger_->setLevel(LoggerConfig::LogDebug);
        record << "kept";
        disabled << "dropped";
    }
    EXPECT_EQ(errors_.take(), "ERROR: kept\n");
    EXPECT_EQ(output_.take(), "");
}

TEST_F(LogRecords, AreLostOnAStreamInError) {
    std::cerr.setstate(std::ios::badbit);
    logError(logger_) << "lost";
    std::cerr.clear();
    logError(logger_) << "kept";
    EXPECT_EQ(errors_.take(), "ERROR: kept\n");
}

TEST_F(LogRecords, AreLostOnAStreamThatThrows) {
    struct Thrower : std::streambuf {
        int overflow(int) override { throw std::runtime_error("no room"); }
    } thrower;
    std::streambuf* const buffer = std::cerr.rdbuf(&thrower);
    std::cerr.exceptions(std::ios::badbit);
    logError(logger_) << "lost";
    std::cerr.exceptions(std::ios::goodbit);
    EXPECT_TRUE(std::cerr.bad());
    std::cerr.rdbuf(buffer);
    EXPECT_EQ(errors_.take(), "");
}

TEST_F(LogRecords, AreLostOnAFullDisk) {
    ASSERT_TRUE(logger_->setTarget("/dev/full"));
    logError(logger_) << "lost";
    logError(logger_) << "lost";
    EXPECT_EQ(output_.take() + errors_.take(), "");
}

TEST_F(LogRecords, LeaveErrnoAsItWas) {
    ASSERT_TRUE(logger_->setTarget("/dev/full"));
    errno = ENXIO;
    logError(logger_) << "lost for want of room";
    EXPECT_EQ(errno, ENXIO);
}

TEST_F(LogRecords, AreWrittenOnceAfterTheyWereMoved) {
    {
        LogRecord first = logError(logger_);
        first << "one";
        LogRecord second = std::move(first);
        second << " two";
        first << "to nobody" << 1 << true << std::vector<int>{1};
        EXPECT_EQ(errors_.take(), "");
    }
    EXPECT_EQ(errors_.take(), "ERROR: one two\n");
}

TEST_F(LogRecords, AreWrittenBeforeTheyTakeOverAnother) {
    LogRecord first = logError(logger_);
    first << "one";
    LogRecord second = logWarning(logger_);
    second << "two";
    first = std::move(second);
    EXPECT_EQ(errors_.take(), "ERROR: one\n");
    first << " three";
    first = LogRecord(nullptr, LoggerConfig::LogError);
    EXPECT_EQ(errors_.take(), "WARNING: two three\n");
}

TEST_F(LogRecords, SurviveTheAssignmentOfThemselves) {
    {
        LogRecord record = logError(logger_);
        record << "one";
        LogRecord& itself = record;
        record = std::move(itself);
        EXPECT_EQ(errors_.take(), "");
    }
    EXPECT_EQ(errors_.take(), "ERROR: one\n");
}

TEST_F(LogRecords, CannotBeCopied) {
    static_assert(!std::is_copy_constructible_v<LogRecord>);
    static_assert(!std::is_copy_assignable_v<LogRecord>);
    static_assert(std::is_nothrow_move_constructible_v<LogRecord>);
}

// --- Scalars ---

TEST_F(LogRecords, PutNothingBetweenPieces) {
    logError(logger_) << "a" << std::string("b") << 'c' << 1 << true;
    EXPECT_EQ(errors_.take(), "ERROR: abc1true\n");
}

TEST_F(LogRecords, ShowTexts) {
    const char* null = nullptr;
    const char array[] = "array";
    EXPECT_EQ(shown("literal"), "literal");
    EXPECT_EQ(shown(array), "array");
    EXPECT_EQ(shown(null), "(null)");
    EXPECT_EQ(shown(std::string("a\0b\n", 4)), std::string("a\0b\n", 4));
    EXPECT_EQ(shown(std::filesystem::path("/path")), "/path");
}

TEST_F(LogRecords, ShowAllOfAView) {
    const std::string text("xa\0b\ny", 6);
    EXPECT_EQ(shown(std::string_view(text).substr(1, 4)), std::string("a\0b\n", 4));
    EXPECT_EQ(shown(std::string_view()), "");
}

TEST_F(LogRecords, ShowBooleansAsWords) {
    EXPECT_EQ(shown(true), "true");
    EXPECT_EQ(shown(false), "false");
}

TEST_F(LogRecords, ShowBytesAsCharacters) {
    EXPECT_EQ(shown('A'), "A");
    const signed char signedByte = 65;
    const unsigned char unsignedByte = 65;
    EXPECT_EQ(shown(signedByte), "A");
    EXPECT_EQ(shown(unsignedByte), "A");
    EXPECT_EQ(shown(static_cast<unsigned char>(0)), std::string(1, '\0'));
    EXPECT_EQ(shown(static_cast<signed char>(-1)), "\xFF");
}

TEST_F(LogRecords, ShowIntegersOfEverySizeInDecimal) {
    EXPECT_EQ(shown(static_cast<short>(-32768)), "-32768");
    EXPECT_EQ(shown(static_cast<unsigned short>(65535)), "65535");
    EXPECT_EQ(shown(-2147483647 - 1), "-2147483648");
    EXPECT_EQ(shown(4294967295U), "4294967295");
    EXPECT_EQ(shown(-7L), "-7");
    EXPECT_EQ(shown(7UL), "7");
    EXPECT_EQ(shown(-9223372036854775807LL), "-9223372036854775807");
    EXPECT_EQ(shown(18446744073709551615ULL), "18446744073709551615");
}

TEST_F(LogRecords, ShowFloatingPointNumbersWithSixDigits) {
    EXPECT_EQ(shown(0.5F), "0.5");
    EXPECT_EQ(shown(3.14159265), "3.14159");
    EXPECT_EQ(shown(3.0), "3");
    EXPECT_EQ(shown(1e20), "1e+20");
}

TEST_F(LogRecords, ShowAddresses) {
    const int object = 0;
    const void* address = &object;
    std::ostringstream expected;
    expected << address;
    EXPECT_EQ(shown(address), expected.str());
}

template <typename T>
concept Insertable = requires(LogRecord& record, const T& value) {
    record << value;
};

struct LikeAText {
    operator std::string() const { return "text"; }
    operator std::string_view() const { return "view"; }
};
struct DerivedText : std::string {
    using std::string::string;
};

TEST_F(LogRecords, TakeEveryScalarUnambiguously) {
    static_assert(Insertable<std::string_view>);
    static_assert(Insertable<std::string>);
    static_assert(Insertable<const char*>);
    static_assert(Insertable<char*>);
    static_assert(Insertable<char[8]>);
    static_assert(Insertable<std::filesystem::path>);
    static_assert(Insertable<bool>);
    static_assert(Insertable<std::vector<bool>::reference>);
    static_assert(Insertable<void*>);
    static_assert(Insertable<int*>);
    EXPECT_EQ(shown(LikeAText()), "text");
    EXPECT_EQ(shown(DerivedText("text")), "text");
}

// --- Lists ---

TEST_F(LogRecords, TakeListsOfTheKnownElementTypesAlone) {
    static_assert(Insertable<std::vector<int>>);
    static_assert(Insertable<std::vector<std::string>>);
    static_assert(!Insertable<std::vector<wchar_t>>);
    static_assert(!Insertable<std::vector<char8_t>>);
    static_assert(!Insertable<std::vector<long double>>);
    static_assert(!Insertable<std::vector<const char*>>);
    static_assert(!Insertable<std::vector<std::string_view>>);
    static_assert(!Insertable<std::vector<const void*>>);
    static_assert(!Insertable<std::vector<std::vector<int>>>);
    static_assert(!Insertable<std::vector<LoggerConfig::Level>>);
}

template <typename T>
struct ListRow {
    std::vector<T> list;
    std::string opening;
    std::string elements;
};

const auto kLists = std::make_tuple(
    ListRow<bool>{{true, false}, "vector<bool>{", "true, false"},
    ListRow<char>{{'A', 'B'}, "vector<char>{", "A, B"},
    ListRow<signed char>{{65, 66}, "vector<signed char>{", "A, B"},
    ListRow<unsigned char>{{65, 66}, "vector<unsigned char>{", "A, B"},
    ListRow<short>{{-1, 2}, "vector<short int>{", "-1, 2"},
    ListRow<unsigned short>{{1, 65535}, "vector<unsigned short int>{", "1, 65535"},
    ListRow<int>{{-1, 2}, "vector<int>{", "-1, 2"},
    ListRow<unsigned int>{{1, 4294967295U}, "vector<unsigned int>{", "1, 4294967295"},
    ListRow<long>{{-1, 2}, "vector<long int>{", "-1, 2"},
    ListRow<unsigned long>{{1, 2}, "vector<unsigned long int>{", "1, 2"},
    ListRow<long long>{{-1, 2}, "vector<long long int>{", "-1, 2"},
    ListRow<unsigned long long>{
        {1, 18446744073709551615U}, "vector<unsigned long long int>{", "1, 18446744073709551615"},
    ListRow<float>{{0.5F, 2}, "vector<float>{", "0.5, 2"},
    ListRow<double>{{0.5, 3.14159265}, "vector<double>{", "0.5, 3.14159"},
    ListRow<std::string>{{"a, b", "'c'"}, "vector<string>{", "a, b, 'c'"});

template <typename Check>
void forEachList(Check check) {
    std::apply([&](const auto&... row) { (check(row), ...); }, kLists);
}

TEST_F(LogRecords, ShowListsOfEveryElementTypeInBrackets) {
    static_assert(std::tuple_size_v<decltype(kLists)> == 15);
    forEachList([this](const auto& row) { EXPECT_EQ(shown(row.list), '[' + row.elements + ']'); });
}

TEST_F(LogRecords, NameTheElementTypeInDebugRecords) {
    forEachList([this](const auto& row) {
        EXPECT_EQ(shownInDebug(row.list), row.opening + row.elements + '}');
    });
}

TEST_F(LogRecords, ShowEmptyListsOfEveryElementType) {
    forEachList([this]<typename T>(const ListRow<T>& row) {
        EXPECT_EQ(shown(std::vector<T>{}), "[]");
        EXPECT_EQ(shownInDebug(std::vector<T>{}), row.opening + '}');
    });
}

TEST_F(LogRecords, PutNoSeparatorIntoAListOfOneElement) {
    EXPECT_EQ(shown(std::vector<int>{1}), "[1]");
    EXPECT_EQ(shownInDebug(std::vector<int>{1}), "vector<int>{1}");
}

TEST_F(LogRecords, ShowEmptyTextsOfAList) {
    EXPECT_EQ(shown(std::vector<std::string>{"", ""}), "[, ]");
}

TEST_F(LogRecords, BracketListsAtEveryOtherLevel) {
    logger_->setLevel(LoggerConfig::LogDebug);
    for (const LevelRow& row : kLevels) {
        row.log(logger_) << std::vector<int>{1, 2};
        const bool isDebug = row.level == LoggerConfig::LogDebug;
        EXPECT_EQ(errors_.take(), row.label + (isDebug ? ": vector<int>{1, 2}\n" : ": [1, 2]\n"));
    }
}

TEST_F(LogRecords, TakeListsAmongOtherPieces) {
    logWarning(logger_) << "values " << std::vector<bool>{true, false} << "; more " << 1;
    EXPECT_EQ(errors_.take(), "WARNING: values [true, false]; more 1\n");
}

}  // namespace
}  // namespace Tarnwick::Parser::Logging
