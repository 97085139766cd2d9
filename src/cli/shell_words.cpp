// SPDX-License-Identifier: MIT
#include "cli/shell_words.h"

#include "settings/setting_rows.h"

namespace tessaly::cli {

std::string shellQuoted(std::string_view text) {
    std::string word = "'";
    for (const char c : text) {
        word += c == '\'' ? std::string{R"('\'')"} : std::string(1, c);
    }
    return word + "'";
}

namespace {

/// These mean themselves to every shell, wherever in a word they stand.
constexpr std::string_view plainCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+:@";

bool isPlain(std::string_view word) {
    return !word.empty() && word.find_first_not_of(plainCharacters) == word.npos;
}

}  // namespace

std::string commandLine(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line.append(line.empty() ? "" : " ").append(isPlain(word) ? word : shellQuoted(word));
    }
    return line;
}

std::string settingKeys() {
    std::string keys;
    for (const settings::SettingRow& row : settings::settingRows()) {
        keys.append(keys.empty() ? "" : " ").append(row.key);
    }
    return keys;
}

}  // namespace tessaly::cli
