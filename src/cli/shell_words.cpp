// SPDX-License-Identifier: MIT
#include "cli/shell_words.h"

#include "settings/setting_rows.h"

namespace tessaly::cli {

std::string quoted(std::string_view text) {
    std::string word = "'";
    for (const char c : text) {
        word += c == '\'' ? std::string{R"('\'')"} : std::string(1, c);
    }
    return word + "'";
}

std::string settingKeys() {
    std::string keys;
    for (const settings::SettingRow& row : settings::settingRows()) {
        keys.append(keys.empty() ? "" : " ").append(row.key);
    }
    return keys;
}

}  // namespace tessaly::cli
