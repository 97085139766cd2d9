// SPDX-License-Identifier: MIT
#include "editor/mark_records.h"

#include <array>
#include <cstddef>

#include "grammar/patterns.h"

namespace tessaly::editor {

namespace {

using grammar::LineAction;
using grammar::patterns::anyPrefix;
using grammar::patterns::anyPrefixWithoutBox;
using Scope = MarkRecord::Scope;

/// 1 indentation · 2 the rest.
constexpr char16_t indentedLine[] = uR"(^(\s*)(.*)$)";
constexpr char16_t anyLine[] = uR"(^(.*)$)";

/// 1 line prefix · 2 box or one blank · 3 up to the last character that is no blank · 4 the rest.
constexpr char16_t inlineTarget[] =
    uR"(^(#+ |^\s*[\*\-\>]{1} |^\s*[0-9]+[\.\)] )?(\[[ x>\-\>]\] |\s)?(.*\S+)?(\s*)?$)";
constexpr char16_t anyHeading[] = uR"(^\s*#+ (.*))";

constexpr char content[] = "$1";

constexpr LineAction prefixing(const char* applyTemplate, const char16_t* appliedPattern) {
    return {.linePattern = indentedLine,
            .applyTemplate = applyTemplate,
            .stripPattern = anyPrefix,
            .stripTemplate = content,
            .appliedPattern = appliedPattern,
            .removeTemplate = content};
}

constexpr LineAction heading(const char* applyTemplate, const char16_t* appliedPattern) {
    return {.linePattern = anyLine,
            .applyTemplate = applyTemplate,
            .stripPattern = anyPrefixWithoutBox,
            .stripTemplate = content,
            .appliedPattern = appliedPattern,
            .removeTemplate = content};
}

constexpr LineAction wrapping(const char* applyTemplate, const char16_t* appliedPattern,
                              const char* removeTemplate) {
    return {.linePattern = inlineTarget,
            .applyTemplate = applyTemplate,
            .appliedPattern = appliedPattern,
            .removeTemplate = removeTemplate,
            .exclusionPattern = anyHeading};
}

constexpr LineAction link{.linePattern = uR"((^|\s)(.*)($|\s))",
                          .applyTemplate = "[$2]()",
                          .stripPattern = anyPrefixWithoutBox,
                          .stripTemplate = content};

constexpr LineAction shiftRight{.linePattern = anyLine, .applyTemplate = "\t$1"};
constexpr LineAction shiftLeft{.appliedPattern = uR"(^[\t\s](.*)$)", .removeTemplate = content};

constexpr std::array<MarkRecord, 20> records{{
    {MarkAction::bold, Scope::words,
     wrapping("$1$2**$3**$4", uR"((?:\*\*|__)(?=\S)(.*?[*_]*)(?<=\S)(?:\*\*|__))", "$1$2$3")},
    {MarkAction::italic, Scope::words,
     wrapping("$1$2*$3*$4", uR"((?<=^|\s)(?:\*|_)(?=\S)(.*?[*_]*)(?<=\S)(?:\*|_)(?=$|\s))",
              content)},
    {MarkAction::link, Scope::words, link},
    {MarkAction::inlineCode, Scope::words, wrapping("$1$2`$3`$4", u"`(.*?)`", content)},
    {MarkAction::heading1, Scope::lines, heading("# $1", u"^# (.*)")},
    {MarkAction::heading2, Scope::lines, heading("## $1", u"^## (.*)")},
    {MarkAction::heading3, Scope::lines, heading("### $1", u"^### (.*)")},
    {MarkAction::heading4, Scope::lines, heading("#### $1", u"^#### (.*)")},
    {MarkAction::todo, Scope::lines,
     prefixing("$1* [ ] $2", uR"(^\s*[\*\-](?: \[[ x\>\-]\]) (.*))")},
    {MarkAction::numberedTodo, Scope::lines,
     prefixing("$1n. [ ] $2", uR"(^\s*[0-9]+[\.\)](?: \[[ x\>\-]\]) (.*))")},
    {MarkAction::unorderedList, Scope::lines,
     prefixing("$1* $2", uR"(^\s*[\*\-] (?!\[[ x\>\-]\] )(.*))")},
    {MarkAction::orderedList, Scope::lines,
     prefixing("$1n. $2", uR"(^\s*[0-9]+[\.\)](?: \[[ x\>\-]\])? (.*))")},
    {MarkAction::markAsDone, Scope::lines, {}, &grammar::markAsDone},
    {MarkAction::markAsScheduled, Scope::lines, {}, &grammar::markAsScheduled},
    {MarkAction::markAsCanceled, Scope::lines, {}, &grammar::markAsCanceled},
    {MarkAction::shiftRight, Scope::lines, shiftRight},
    {MarkAction::shiftLeft, Scope::lines, shiftLeft},
    {MarkAction::moveUp, Scope::block, {}},
    {MarkAction::moveDown, Scope::block, {}},
    {MarkAction::quote, Scope::lines, prefixing("$1> $2", uR"(^\s*\> (.*))")},
}};

constexpr bool inOrder() {
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (records[i].action != static_cast<MarkAction>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(inOrder(), "a record is found by its action's place");

}  // namespace

const MarkRecord& recordOf(MarkAction action) {
    return records[static_cast<std::size_t>(action)];
}

}  // namespace tessaly::editor
