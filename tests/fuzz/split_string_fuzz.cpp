// splitString in every mode and with every limit.
//
// Input: the separator, the limit (a digit, or a letter of `limitOf`), the text.

#include <cstddef>
#include <cstdint>
#include <limits>

#include "plain/split.h"
#include "support/check.h"

using namespace Tarnwick::Parser;

namespace {

int limitOf(std::uint8_t letter) {
    switch (letter) {
        case '-':
            return kNoSplitLimit;
        case 'm':
            return std::numeric_limits<int>::min();
        case 'M':
            return std::numeric_limits<int>::max();
        default:
            return (letter + 2) % 10;  // '0' is 0
    }
}

std::string joined(const std::vector<std::string>& pieces) {
    std::string text;
    for (const std::string& piece : pieces) {
        text += Fuzz::shown(piece) + ' ';
    }
    return text;
}

void checkSplit(const std::string& text, char separator, int maxSplits, EmptyMode mode) {
    Fuzz::checkEqual(joined(Fuzz::plainSplit(text, separator, maxSplits, mode)),
                     joined(splitString(text, separator, maxSplits, mode)),
                     "splitting " + Fuzz::shown(text) + " at " + Fuzz::shown({&separator, 1}) +
                         ", limit " + std::to_string(maxSplits) + ", mode " + std::to_string(mode));
}

// Pieces put together again are the text: nothing is lost, invented or moved.
void checkReassembly(const std::string& text, char separator) {
    std::string again;
    const std::vector<std::string> pieces =
        splitString(text, separator, kNoSplitLimit, KeepEmptyAtEnd);
    for (const std::string& piece : pieces) {
        again += piece + separator;
    }
    again.pop_back();
    Fuzz::checkEqual(text, again, "the pieces of a text make up the text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const char separator = static_cast<char>(data[0]);
    const int maxSplits = limitOf(data[1]);
    const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    for (const EmptyMode mode : {KeepEmpty, SkipEmpty, KeepEmptyAtEnd}) {
        checkSplit(text, separator, maxSplits, mode);
    }
    checkReassembly(text, separator);
    return 0;
}
