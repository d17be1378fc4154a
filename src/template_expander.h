#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config_value.h"
#include "diagnostic.h"
#include "parser_types.h"
#include "template_text.h"

namespace Tarnwick::Parser {

/// Reads what a source has for the template: its text, or nothing.
using SourceReader = std::optional<std::string> (*)(const TemplateToken& from, std::int32_t userId);

/// The functions that read sources, by `TemplateSource`.
using SourceReaders = std::array<SourceReader, 6>;

/// The readers of the real sources: environment, files, dconf, properties, commands.
extern const SourceReaders kSourceReaders;

/// What templates are expanded with. It refers to the variables.
struct TemplateContext {
    const std::map<std::string, std::string>& variables;
    std::int32_t userId;  ///< whose dconf database is read; -1 for the process's own
    SourceReaders readers = kSourceReaders;
};

/// Expands the templates of texts. Tells `sink` what it finds, as soon as it finds it. The
/// context's variables have to outlive it.
class TemplateExpander {
public:
    TemplateExpander(const TemplateContext& context, DiagnosticSink sink)
        : context_(context), sink_(std::move(sink)) {}

    /// Expands `text` into `out.text`, trimmed, and adds its references to those that `out` has.
    /// Returns false when a template failed: `out.text` is as it was then, and references met
    /// before the failure remain. Adds what each template came to to `outcomes`, unless it is
    /// null; columns count from 1 in `text`, there and in what the sink is told.
    ///
    /// Throws `std::length_error` when the expanded text is white space alone, or when an
    /// environment file has a name or the wanted value of white space alone.
    [[nodiscard]] bool expand(std::string_view text, ConfigValue& out,
                              std::vector<TemplateOutcome>* outcomes = nullptr) const;

    /// Resolves one template, a token of `whole`. `Resolved` sets `text`; on `Reference` the token
    /// has group and key. Otherwise `text` is as it was. Throws as `expand` does.
    [[nodiscard]] TemplateResult resolve(const TemplateToken& token, std::string_view whole,
                                         std::string& text) const;

private:
    /// What an expansion adds to.
    struct Expansion {
        std::string text;
        ConfigValue& value;                      // gets the references
        std::vector<TemplateOutcome>* outcomes;  // may be null
    };

    [[nodiscard]] bool append(const TemplateToken& token, std::string_view whole,
                              Expansion& expansion) const;
    [[nodiscard]] std::optional<std::string> find(const TemplateToken& token) const;
    void report(const TemplateToken& token, std::string_view whole) const;

    TemplateContext context_;
    DiagnosticSink sink_;
};

}  // namespace Tarnwick::Parser
