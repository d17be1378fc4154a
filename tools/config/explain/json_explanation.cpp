// The explanation for programs: one object, its assignments one a line.

#include <iostream>

#include "config/explain/explanation.h"
#include "config/json.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

std::string_view nameOf(Outcome outcome) {
    // By outcome.
    static constexpr std::array<std::string_view, 6> kNames{"read",  "stored",  "current",
                                                            "unset", "dropped", "fatal"};
    return kNames.at(static_cast<std::size_t>(outcome));
}

std::string_view nameOf(Trace::Kind kind) {
    // By kind.
    static constexpr std::array<std::string_view, 6> kNames{"source", "reference", "missing",
                                                            "circle", "too-many",  "not-filled"};
    return kNames.at(static_cast<std::size_t>(kind));
}

void setOptional(Json& object, const std::string& name, const std::optional<std::string>& text) {
    if (text) {
        setText(object, name, *text);
    } else {
        object[name] = nullptr;
    }
}

void setUnlessEmpty(Json& object, const std::string& name, const std::string& text) {
    setOptional(object, name, text.empty() ? std::nullopt : std::optional(text));
}

void setPlace(Json& object, const LineOrigin& origin) {
    setOptional(object, "path",
                origin.path != nullptr ? std::optional(*origin.path) : std::nullopt);
    object["line"] = origin.line > 0 ? Json(origin.line) : Json();
}

// Recursion is as deep as references were followed.
Json asJson(const std::vector<Trace>& traces) {
    Json list = Json::array();
    for (const Trace& trace : traces) {
        Json object;
        setText(object, "name", trace.name);
        object["kind"] = nameOf(trace.kind);
        setOptional(object, "text", trace.text);
        setUnlessEmpty(object, "words", trace.shift.empty() ? trace.words : trace.shift);
        setPlace(object, trace.word != nullptr ? trace.word->origin : LineOrigin());
        object["templates"] = asJson(trace.parts);
        list.push_back(std::move(object));
    }
    return list;
}

Json asJson(const Assignment& assignment) {
    Json object;
    setPlace(object, assignment.origin);
    setText(object, "text", assignment.text);
    object["removed"] = assignment.removed ? Json(*assignment.removed) : Json();
    Json& pieces = object["pieces"] = Json::array();
    for (const Piece& piece : assignment.pieces) {
        Json row;
        setText(row, "text", assignment.textOf(piece));
        row["column"] = piece.column;
        row["outcome"] = nameOf(piece.outcome);
        setUnlessEmpty(row, "reason", piece.reason);
        row["templates"] = asJson(piece.traces);
        pieces.push_back(std::move(row));
    }
    return object;
}

Json asJson(const LoadFailure& failure) {
    Json object;
    setPlace(object, failure.origin);
    object["column"] = failure.origin.line > 0 ? Json(failure.column) : Json();
    setUnlessEmpty(object, "text", failure.text);
    setText(object, "reason", failure.reason);
    return object;
}

Json userOf(const Explanation& explanation) {
    Json object;
    object["id"] = explanation.userId ? Json(*explanation.userId) : Json();
    setUnlessEmpty(object, "origin", explanation.userOrigin);
    setUnlessEmpty(object, "remark", explanation.userRemark);
    Json& keys = object["generated"] = Json::array();
    for (const UserKey& key : explanation.userKeys) {
        Json row;
        setText(row, "name", key.name);
        setText(row, "text", key.text);
        setPlace(row, key.origin);
        keys.push_back(std::move(row));
    }
    return object;
}

template <typename T>
Json listOf(const std::vector<T>& rows) {
    Json list = Json::array();
    for (const T& row : rows) {
        list.push_back(asJson(row));
    }
    return list;
}

Json headOf(const Explanation& explanation) {
    Json object;
    setText(object, "group", explanation.name.group);
    setText(object, "key", explanation.name.key);
    object["status"] = static_cast<int>(explanation.status);
    setOptional(object, "value", explanation.value);
    object["values"] = explanation.valueCount;
    setUnlessEmpty(object, "problem", explanation.problem);
    object["failures"] = listOf(explanation.failures);
    object["files"] = explanation.fileCount;
    object["user"] = userOf(explanation);
    object["near"] = explanation.near;
    return object;
}

}  // namespace

void printJson(const Explanation& explanation) {
    std::string head = printed(headOf(explanation));
    head.pop_back();  // the brace: assignments follow one by one
    std::cout << head << ",\"assignments\":[";
    bool isFirst = true;
    for (const Assignment& assignment : explanation.assignments) {
        if (!std::cout.good()) {
            return;  // nobody reads on
        }
        std::cout << (isFirst ? "\n" : ",\n") << printed(asJson(assignment));
        isFirst = false;
    }
    std::cout << (isFirst ? "" : "\n") << "]}\n";
}

}  // namespace Tarnwick::Parser::ConfigTool
