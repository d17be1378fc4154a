// The checker of files. Input: the bytes of one file. Whatever they are, every fault has its place
// inside the file, and every text of it is short.

#include <fcntl.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "config/check/file_checker.h"
#include "config/display.h"
#include "support/check.h"
#include "support/scratch_directory.h"

using namespace Tarnwick::Parser;
using namespace Tarnwick::Parser::ConfigTool;

namespace {

constexpr std::size_t kLongestText = 16384;  // a message names 33 keys and files at most

/// The lines of the file, found in the plainest way.
std::vector<std::string> plainLines(const std::string& content) {
    std::vector<std::string> lines(1);
    for (const char byte : content) {
        if (byte == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += byte;
        }
    }
    return lines;
}

void checkPlace(const Fault& fault, const std::vector<std::string>& lines) {
    Fuzz::check(fault.line >= 1 && fault.line <= lines.size(), "the line is one of the file");
    const std::string& line = lines[fault.line - 1];
    Fuzz::check(fault.firstColumn >= 1 && fault.firstColumn <= line.size() + 1,
                "the first column is in the line or one past its end");
    Fuzz::check(fault.lastColumn >= fault.firstColumn && fault.lastColumn <= line.size() + 1,
                "the last column is in the line or one past its end");
    Fuzz::checkEqual(line.substr(fault.excerpt.first, fault.excerpt.text.size()),
                     fault.excerpt.text, "the excerpt is a part of the line");
    Fuzz::check(fault.firstColumn - 1 >= fault.excerpt.first &&
                    fault.firstColumn - 1 <= fault.excerpt.first + fault.excerpt.text.size(),
                "the fault begins in the excerpt");
    Fuzz::check(fault.message.size() < kLongestText && fault.excerpt.text.size() < kLongestText,
                "no text of a fault is long");
}

void checkShown(const Fault& fault) {
    for (const std::string_view text : {fault.message, fault.excerpt.text}) {
        const std::string safe = escaped(text);
        Fuzz::check(findInvalidUtf8(safe) == safe.npos, "what is shown is UTF-8");
        for (const char byte : safe) {
            Fuzz::check(static_cast<unsigned char>(byte) >= ' ' && byte != 0x7f,
                        "what is shown has no control");
        }
    }
}

void checkFile(const std::string& content) {
    const std::string path = Fuzz::writeScratchFile("check.conf", content);
    const std::vector<std::string> lines = plainLines(content);
    const FaultSink sink = [&](const Fault& fault) {
        checkPlace(fault, lines);
        checkShown(fault);
    };
    KnownNames names;
    ReferenceGraph graph;
    FileChecker checker(names, graph, sink);
    LineReader reader(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    Fuzz::check(checker.check(path, reader, [] { return true; }), "the file is read to its end");
    graph.judge(true, names, sink);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkFile({reinterpret_cast<const char*>(data), size});
    return 0;
}
