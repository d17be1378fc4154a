#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace Tarnwick::Parser {

/// Reads a file line by line through one buffer. A line ends at a line feed, which is not part of
/// it; every other byte is, NUL and carriage return included.
class LineReader {
public:
    enum class Outcome {
        Line,              ///< a line that a line feed ended
        UnterminatedLine,  ///< the rest of the file after the last line feed, not empty
        EndOfFile,         ///< nothing is left now; a file that grows has more later
        Failure,           ///< the file could not be opened or read
    };

    /// Opens `path` for reading. When that fails, every `next` is a `Failure`.
    explicit LineReader(const std::string& path);
    /// Reads from an open descriptor, from where it stands, and closes it in the end.
    explicit LineReader(int descriptor) : descriptor_(descriptor) {}
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// Reads the next line. `line` points into the buffer and is valid until the next call; it is
    /// unspecified unless there was a line.
    [[nodiscard]] Outcome next(std::string_view& line) {
        return takeBufferedLine(line) ? Outcome::Line : readLine(line);
    }

    /// The two halves of `next`. The first takes a line that the buffer holds whole; it leaves the
    /// buffer, and so every line taken from it, as it is, and returns whether there was one. The
    /// second, to be called when there was none, reads more of the file into the buffer.
    [[nodiscard]] bool takeBufferedLine(std::string_view& line) { return takeLine(line, 0); }
    [[nodiscard]] Outcome readLine(std::string_view& line);

    /// Skips what is left of the file and returns the offset of its end, or -1 when the file could
    /// not be opened or has no offsets.
    std::int64_t skipToEnd();

    /// Returns the offset of the first byte that has not been handed out.
    [[nodiscard]] std::int64_t offset() const { return offset_; }

private:
    // Takes a line that the buffer holds whole; no line feed is looked for in the first
    // `searched` bytes. Here, for lines are many and this is nearly all of what one costs.
    [[nodiscard]] bool takeLine(std::string_view& line, std::size_t searched) {
        const char* start = buffer_.get() + begin_;
        const void* lineFeed = end_ - begin_ > searched
                                   ? std::memchr(start + searched, '\n', end_ - begin_ - searched)
                                   : nullptr;
        if (lineFeed == nullptr) {
            return false;
        }
        const auto length = static_cast<std::size_t>(static_cast<const char*>(lineFeed) - start);
        line = take(length, length + 1);
        return true;
    }

    [[nodiscard]] std::string_view take(std::size_t length, std::size_t consumed) {
        const std::string_view line(buffer_.get() + begin_, length);
        begin_ += consumed;
        offset_ += static_cast<std::int64_t>(consumed);
        return line;
    }

    [[nodiscard]] std::int64_t readMore();
    void makeSpace();

    int descriptor_;
    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_ = 0;
    std::size_t begin_ = 0;  // the bytes from begin_ to end_ have been read but not handed out
    std::size_t end_ = 0;
    std::int64_t offset_ = 0;
};

}  // namespace Tarnwick::Parser
