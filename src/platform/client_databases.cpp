// SPDX-License-Identifier: MIT
#include <memory>
#include <sqlite3.h>

#include <fmt/format.h>

#include "platform/client_files.h"

namespace tessaly::platform {

namespace {

/// Enough for any number of folders; what asks for more is no client's database.
constexpr std::size_t mostTexts = 1000;
constexpr int mostSteps = 1'000'000;
constexpr int mostBytesOfText = 1 << 20;

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
struct EndStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;
using Statement = std::unique_ptr<sqlite3_stmt, EndStatement>;

/// "immutable" keeps SQLite from locking, and from making files of its own.
std::string readOnlyUri(std::string_view path) {
    std::string uri = "file:";
    for (const char c : path) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') || c == '/' || c == '.' || c == '-' || c == '_';
        uri += isPlain
                   ? std::string(1, c)
                   : fmt::format("%{:02X}", static_cast<unsigned>(static_cast<unsigned char>(c)));
    }
    return uri + "?mode=ro&immutable=1";
}

Database openDatabase(const std::string& path) {
    sqlite3* opened = nullptr;
    const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
    const int error = sqlite3_open_v2(readOnlyUri(path).c_str(), &opened, flags, nullptr);
    Database database(opened);
    if (error != SQLITE_OK) {
        return nullptr;
    }
    sqlite3_limit(opened, SQLITE_LIMIT_LENGTH, mostBytesOfText);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_progress_handler(
        opened, mostSteps, [](void*) { return 1; }, nullptr);
    return database;
}

}  // namespace

std::vector<std::string> textsInDatabase(const std::string& path, const std::string& query) {
    const Database database = isRegularFile(path) ? openDatabase(path) : nullptr;
    sqlite3_stmt* prepared = nullptr;
    if (!database ||
        sqlite3_prepare_v2(database.get(), query.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
        return {};
    }
    const Statement statement(prepared);
    std::vector<std::string> texts;
    int state = SQLITE_ROW;
    while (texts.size() < mostTexts && (state = sqlite3_step(prepared)) == SQLITE_ROW) {
        if (sqlite3_column_type(prepared, 0) == SQLITE_TEXT) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
            texts.emplace_back(text, static_cast<std::size_t>(sqlite3_column_bytes(prepared, 0)));
        }
    }
    return state == SQLITE_ROW || state == SQLITE_DONE ? texts : std::vector<std::string>();
}

}  // namespace tessaly::platform
