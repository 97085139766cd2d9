// SPDX-License-Identifier: MIT
#include "settings/list_text.h"

#include <cstddef>

#include "base/utf8.h"

namespace tessaly::settings {

namespace {

std::string escaped(std::string_view item) {
    std::string text;
    for (std::size_t i = 0; i < item.size(); ++i) {
        const bool isOuterBlank = item[i] == ' ' && (i == 0 || i + 1 == item.size());
        if (item[i] == ',' || item[i] == '\\' || isOuterBlank) {
            text += '\\';
        }
        text += item[i];
    }
    return text;
}

/// One item as it grows.
struct Item {
    std::string text;
    std::size_t kept = 0;  ///< bytes up to the last that is no blank around the item

    void add(char c) {
        if (c != ' ' || !text.empty()) {
            text += c;
        }
        kept = c == ' ' ? kept : text.size();
    }
    void addEscaped(char c) {
        text += c;
        kept = text.size();
    }
    void moveTo(std::vector<std::string>& items) {
        if (kept > 0) {
            items.push_back(text.substr(0, kept));
        }
        *this = {};
    }
};

}  // namespace

std::optional<std::vector<std::string>> itemsFromText(std::string_view text) {
    if (!base::isUtf8(text) || text.find_first_of("\n\r") != std::string_view::npos) {
        return std::nullopt;
    }
    std::vector<std::string> items;
    Item item;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ',') {
            item.moveTo(items);
        } else if (text[i] != '\\') {
            item.add(text[i]);
        } else if (++i < text.size()) {
            item.addEscaped(text[i]);
        } else {
            return std::nullopt;
        }
    }
    item.moveTo(items);
    return items;
}

std::string textOfItems(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) {
        if (!item.empty()) {
            text += (text.empty() ? "" : ", ") + escaped(item);
        }
    }
    return text;
}

}  // namespace tessaly::settings
