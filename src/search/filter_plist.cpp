// SPDX-License-Identifier: MIT
#include "search/filter_plist.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <plist/plist.h>

#include "base/graphemes.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "search/plist_bounds.h"

namespace tessaly::search {
namespace {

using base::Failure;
using base::tr;

constexpr std::size_t longestQuoted = 60;

struct Freed {
    void operator()(void* plist) const { plist_free(plist); }
};
using Plist = std::unique_ptr<void, Freed>;

Failure malformed(std::string words) {
    return {Failure::Kind::malformed, std::move(words)};
}

bool isText(std::string_view text) {
    return text.find('\0') == text.npos && base::isUtf8(text);
}

plist_t newItem(const FilterItem& item) {
    plist_t dictionary = plist_new_dict();
    plist_dict_set_item(dictionary, "param",
                        plist_new_string(std::string(base::rawValue(item.param)).c_str()));
    plist_dict_set_item(dictionary, "value", plist_new_string(item.value().c_str()));
    plist_dict_set_item(dictionary, "display", plist_new_bool(item.display ? 1 : 0));
    return dictionary;
}

std::string binaryOf(const Plist& plist) {
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(plist.get(), &bytes, &size);
    const std::unique_ptr<char, decltype(&plist_to_bin_free)> owned(bytes, plist_to_bin_free);
    return owned ? std::string(owned.get(), size) : std::string{};
}

/// Null: it is no property list, or not one that may be read.
Plist parsed(std::string_view bytes) {
    plist_t root = nullptr;
    if (bytes.starts_with(binaryMagic)) {
        if (isModestBinaryPlist(bytes)) {
            plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
        }
        return Plist(root);
    }
    const std::string xml(base::trimmed(base::withoutByteOrderMark(bytes)));
    if (xml.starts_with('<') && isText(xml) && isModestXmlPlist(xml)) {
        plist_from_xml(xml.c_str(), static_cast<std::uint32_t>(xml.size()), &root);
    }
    return Plist(root);
}

/// Takes one item of the array apart; the first thing that is wrong stays in `problem`.
class ItemReader {
public:
    explicit ItemReader(plist_t item) : _item(item) {}

    std::optional<FilterItem> read() {
        if (plist_get_node_type(_item) != PLIST_DICT) {
            return complain(tr("it is no dictionary"));
        }
        const auto name = text("param");
        auto value = text("value");
        const auto display = boolean("display");
        const auto parameter = name ? base::fromRawValue<FilterParamater>(*name) : std::nullopt;
        if (name && !parameter) {
            complain(fmt::format(fmt::runtime(tr("“{}” is no parameter of filters")),
                                 base::cutToBytes(*name, longestQuoted)));
        }
        return parameter && value && display
                   ? std::optional<FilterItem>(std::in_place, *parameter, *std::move(value),
                                               *display)
                   : std::nullopt;
    }

    const std::string& problem() const { return _problem; }

private:
    std::nullopt_t complain(std::string words) {
        if (_problem.empty()) {
            _problem = std::move(words);
        }
        return std::nullopt;
    }

    plist_t member(const char* key, plist_type type, const char* otherType) {
        plist_t found = plist_dict_get_item(_item, key);
        if (found == nullptr) {
            complain(fmt::format(fmt::runtime(tr("“{}” is missing")), key));
            return nullptr;
        }
        if (plist_get_node_type(found) != type) {
            complain(fmt::format(fmt::runtime(tr(otherType)), key));
            return nullptr;
        }
        return found;
    }

    std::optional<std::string> text(const char* key) {
        plist_t found = member(key, PLIST_STRING, base::N_("“{}” is no text"));
        std::uint64_t length = 0;
        const char* bytes = found == nullptr ? nullptr : plist_get_string_ptr(found, &length);
        if (bytes == nullptr) {
            return found == nullptr ? std::nullopt : std::optional(std::string{});
        }
        std::string text(bytes, length);
        if (!isText(text)) {
            return complain(
                fmt::format(fmt::runtime(tr("“{}” holds what is no readable text")), key));
        }
        return text;
    }

    std::optional<bool> boolean(const char* key) {
        plist_t found = member(key, PLIST_BOOLEAN, base::N_("“{}” is neither true nor false"));
        if (found == nullptr) {
            return std::nullopt;
        }
        std::uint8_t value = 0;
        plist_get_bool_val(found, &value);
        return value != 0;
    }

    plist_t _item;
    std::string _problem;
};

}  // namespace

base::Result<std::string> filterToPlist(const Filter& filter) {
    const Plist array(plist_new_array());
    for (const FilterItem& item : filter) {
        if (!isText(item.value())) {
            return malformed(fmt::format(fmt::runtime(tr("the value of {} is no readable text")),
                                         base::rawValue(item.param)));
        }
        plist_array_append_item(array.get(), newItem(item));
    }
    std::string bytes = binaryOf(array);
    return isModestBinaryPlist(bytes) ? base::Result<std::string>(std::move(bytes))
                                      : malformed(tr("the filter is too large"));
}

base::Result<Filter> filterFromPlist(std::string_view bytes) {
    const Plist root = bytes.size() <= maxPlistBytes ? parsed(bytes) : Plist{};
    if (!root) {
        return malformed(tr("it is no property list"));
    }
    if (plist_get_node_type(root.get()) != PLIST_ARRAY) {
        return malformed(tr("it is no list of parameters"));
    }
    Filter filter;
    plist_array_iter next = nullptr;
    plist_array_new_iter(root.get(), &next);
    const std::unique_ptr<void, decltype(&std::free)> owned(next, std::free);
    plist_t each = nullptr;
    for (plist_array_next_item(root.get(), next, &each); each != nullptr;
         plist_array_next_item(root.get(), next, &each)) {
        ItemReader reader(each);
        auto item = reader.read();
        if (!item) {
            return malformed(fmt::format(fmt::runtime(tr("item {0}: {1}")), filter.size() + 1,
                                         reader.problem()));
        }
        filter.push_back(*std::move(item));
    }
    return filter;
}

}  // namespace tessaly::search
