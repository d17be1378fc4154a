#include "support/line_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace Tarnwick::Parser {
namespace {

static_assert(sizeof(off_t) == 8);  // Files may be larger than 2 GiB.

constexpr std::size_t kFirstCapacity = 32 * 1024;

ssize_t readSome(int descriptor, char* buffer, std::size_t size) {
    ssize_t count = -1;
    do {
        count = read(descriptor, buffer, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

}  // namespace

LineReader::LineReader(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}

LineReader::~LineReader() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

std::int64_t LineReader::skipToEnd() {
    begin_ = end_;
    offset_ = lseek(descriptor_, 0, SEEK_END);
    return offset_;
}

// Reads until the buffer holds a line to its end.
LineReader::Outcome LineReader::readLine(std::string_view& line) {
    for (;;) {
        const std::size_t pending = end_ - begin_;
        const std::int64_t count = readMore();
        if (count < 0) {
            return Outcome::Failure;
        }
        if (count == 0 && pending == 0) {
            return Outcome::EndOfFile;
        }
        if (count == 0) {
            line = take(pending, pending);
            return Outcome::UnterminatedLine;
        }
        if (takeLine(line, pending)) {
            return Outcome::Line;
        }
    }
}

// Reads more bytes behind those not handed out yet. Returns how many, or -1 for a failure.
std::int64_t LineReader::readMore() {
    makeSpace();
    const ssize_t count = readSome(descriptor_, buffer_.get() + end_, capacity_ - end_);
    end_ += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    return count;
}

// Moves the unfinished line to the front, and doubles the buffer when the line fills it.
void LineReader::makeSpace() {
    const std::size_t pending = end_ - begin_;
    if (pending == capacity_) {
        const std::size_t capacity = std::max(kFirstCapacity, 2 * capacity_);
        auto buffer = std::make_unique_for_overwrite<char[]>(capacity);
        std::copy_n(buffer_.get() + begin_, pending, buffer.get());
        buffer_ = std::move(buffer);
        capacity_ = capacity;
    } else if (begin_ > 0) {
        std::memmove(buffer_.get(), buffer_.get() + begin_, pending);
    }
    begin_ = 0;
    end_ = pending;
}

}  // namespace Tarnwick::Parser
