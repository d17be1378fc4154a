#include "support/line_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser {
namespace {

using Outcome = LineReader::Outcome;
using Lines = std::vector<std::string>;

struct Reading {
    Lines lines;
    Outcome end;
};

Reading readAll(LineReader& reader) {
    Reading reading{{}, Outcome::Line};
    std::string_view line;
    while ((reading.end = reader.next(line)) == Outcome::Line) {
        reading.lines.emplace_back(line);
    }
    if (reading.end == Outcome::UnterminatedLine) {
        reading.lines.emplace_back(line);
    }
    return reading;
}

class LineReading : public testing::Test {
protected:
    Reading read(std::string_view content) {
        LineReader reader(directory_.write("file", content));
        return readAll(reader);
    }

    Testing::TemporaryDirectory directory_;
};

TEST_F(LineReading, EndsALineAtALineFeed) {
    const Reading reading = read("one\n\ntwo\n");
    EXPECT_EQ(reading.lines, (Lines{"one", "", "two"}));
    EXPECT_EQ(reading.end, Outcome::EndOfFile);
}

TEST_F(LineReading, TellsALastLineWithoutALineFeed) {
    const Reading reading = read("one\ntwo");
    EXPECT_EQ(reading.lines, (Lines{"one", "two"}));
    EXPECT_EQ(reading.end, Outcome::UnterminatedLine);
}

TEST_F(LineReading, ReadsADescriptorFromWhereItStandsAndClosesIt) {
    const int descriptor = open(directory_.write("file", "one\ntwo\n").c_str(), O_RDONLY);
    ASSERT_EQ(lseek(descriptor, 4, SEEK_SET), 4);
    {
        LineReader reader(descriptor);
        EXPECT_EQ(readAll(reader).lines, Lines{"two"});
    }
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(LineReading, FindsNothingInAnEmptyFile) {
    const Reading reading = read("");
    EXPECT_TRUE(reading.lines.empty());
    EXPECT_EQ(reading.end, Outcome::EndOfFile);
}

TEST_F(LineReading, KeepsEveryOtherByte) {
    const std::string line("a\0b\r\t\xFF", 6);
    EXPECT_EQ(read(line + '\n').lines, (Lines{line}));
}

TEST_F(LineReading, ReadsLinesOfAnyLength) {
    Lines lines;
    std::string content;
    for (const std::size_t length : {32767U, 32768U, 32769U, 5U, 65536U, 200000U, 0U, 1U}) {
        lines.emplace_back(length, static_cast<char>('a' + lines.size()));
        content += lines.back() + '\n';
    }
    const Reading reading = read(content);
    EXPECT_EQ(reading.lines, lines);
    EXPECT_EQ(reading.end, Outcome::EndOfFile);
}

TEST_F(LineReading, ReadsManyLinesAcrossTheBuffersEdges) {
    Lines lines;
    std::string content;
    for (std::size_t index = 0; index < 20000; ++index) {
        lines.push_back(std::to_string(index * index));
        content += lines.back() + '\n';
    }
    EXPECT_EQ(read(content).lines, lines);
}

TEST_F(LineReading, CountsTheBytesHandedOut) {
    LineReader reader(directory_.write("file", "one\n\ntwo"));
    std::string_view line;
    EXPECT_EQ(reader.offset(), 0);
    EXPECT_EQ(reader.next(line), Outcome::Line);
    EXPECT_EQ(reader.offset(), 4);
    EXPECT_EQ(reader.next(line), Outcome::Line);
    EXPECT_EQ(reader.offset(), 5);
    EXPECT_EQ(reader.next(line), Outcome::UnterminatedLine);
    EXPECT_EQ(reader.offset(), 8);
}

TEST_F(LineReading, SkipsToTheEndOfTheFile) {
    LineReader reader(directory_.write("file", "one\ntwo\nthree"));
    std::string_view line;
    EXPECT_EQ(reader.next(line), Outcome::Line);
    EXPECT_EQ(reader.skipToEnd(), 13);
    EXPECT_EQ(reader.offset(), 13);
    EXPECT_EQ(reader.next(line), Outcome::EndOfFile);
    EXPECT_EQ(LineReader(directory_.path("missing")).skipToEnd(), -1);
}

TEST_F(LineReading, CountsBeyondWhat32BitsHold) {
    const std::string path = directory_.write("file", "one\n");
    const std::uint64_t size = std::uint64_t{5} << 30U;
    std::filesystem::resize_file(path, size);  // a hole, which takes no room
    LineReader reader(path);
    std::string_view line;
    EXPECT_EQ(reader.next(line), Outcome::Line);
    EXPECT_EQ(reader.skipToEnd(), static_cast<std::int64_t>(size));
}

TEST_F(LineReading, FindsWhatIsAddedToAFileAfterItsEnd) {
    const std::string path = directory_.write("file", "one\n");
    LineReader reader(path);
    EXPECT_EQ(readAll(reader).end, Outcome::EndOfFile);
    std::ofstream(path, std::ios::app) << "two\n";
    EXPECT_EQ(readAll(reader).lines, (Lines{"two"}));
}

TEST_F(LineReading, FailsOnAFileThatIsNotThere) {
    LineReader reader(directory_.path("missing"));
    std::string_view line;
    EXPECT_EQ(reader.next(line), Outcome::Failure);
    EXPECT_EQ(reader.next(line), Outcome::Failure);
}

TEST_F(LineReading, FailsOnADirectory) {
    LineReader reader(directory_.path());
    std::string_view line;
    EXPECT_EQ(reader.next(line), Outcome::Failure);
}

}  // namespace
}  // namespace Tarnwick::Parser
