// SPDX-License-Identifier: MIT
#include <filesystem>
#include <map>
#include <memory>
#include <sqlite3.h>

#include <doctest/doctest.h>
#include <sys/stat.h>

#include "platform/cloud_folders.h"
#include "support/notes_in_text.h"
#include "support/temp_folder.h"

using namespace tessaly;
using tests::TempFolder;

namespace {

// A home in the text of `notesIn`, with ~ for its own path in the files' texts as HOME.
struct Home {
    explicit Home(std::string_view files) {
        for (auto [name, text] : tests::notesIn(files)) {
            for (std::size_t at; (at = text.find("HOME")) != text.npos;) {
                text.replace(at, 4, folder.path());
            }
            folder.write(name, text);
        }
    }

    // "client path (label) paused", a line a folder, with ~ for the home.
    std::string folders() const {
        const platform::ClientHomes homes{folder.path(), folder / ".config", folder / "state"};
        std::string lines;
        for (const ports::CloudFolder& found : platform::cloudFoldersOf(homes)()) {
            CHECK(std::filesystem::exists(found.source));
            std::string path = found.path;
            if (path.starts_with(folder.path())) {
                path.replace(0, folder.path().size(), "~");
            }
            lines += found.client + " " + path + (found.label.empty() ? "" : " " + found.label) +
                     (found.isPaused ? " paused" : "") + "\n";
        }
        return lines;
    }

    TempFolder folder;
};

// Names and bytes, and when each was changed.
std::map<std::string, std::string> stateOf(const TempFolder& folder) {
    auto all = folder.everything();
    for (auto& [name, bytes] : all) {
        struct stat status {};
        ::lstat((folder / name).c_str(), &status);
        bytes +=
            std::to_string(status.st_mtim.tv_nsec) + "," + std::to_string(status.st_ctim.tv_nsec);
    }
    return all;
}

void checkFolders(std::string_view files, const std::string& expected) {
    CAPTURE(files);
    const Home home(files);
    const auto before = stateOf(home.folder);
    CHECK(home.folders() == expected);
    CHECK(stateOf(home.folder) == before);
}

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

// Open for as long as the result is kept, as a running client has it.
Database makeDatabase(const std::string& path, const std::string& script) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    sqlite3* opened = nullptr;
    REQUIRE(sqlite3_open(path.c_str(), &opened) == SQLITE_OK);
    Database database(opened);
    REQUIRE(sqlite3_exec(opened, script.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
    return database;
}

constexpr char syncthing[] =
    "-- .config/syncthing/config.xml\n"
    "<configuration version=\"35\">\n"
    "    <folder id=\"a1b2\" label=\"Planner &amp; more\" path=\"HOME/Sync/\" "
    "type=\"sendreceive\" rescanIntervalS=\"3600\">\n"
    "        <filesystemType>basic</filesystemType>\n"
    "        <device id=\"ABCDEFG\" introducedBy=\"\"><encryptionPassword></encryptionPassword>"
    "</device>\n"
    "        <paused>false</paused>\n"
    "    </folder>\n"
    "    <folder id=\"c3d4\" label=\"\" path=\"~/Caf\xc3\xa9\"><paused> true </paused></folder>\n"
    "    <folder id=\"in\" label=\"In\" path=\"~/In\" type=\"receiveonly\"></folder>\n"
    "    <folder id=\"locked\" path=\"~/Locked\" type=\"receiveencrypted\"></folder>\n"
    "    <folder id=\"e5f6\" path=\"relative\"></folder>\n"
    "    <folder id=\"all\" path=\"/\"></folder>\n"
    "    <device id=\"ABCDEFG\"><paused>true</paused></device>\n"
    "    <defaults><folder id=\"\" label=\"\" "
    "path=\"~\"><paused>false</paused></folder></defaults>\n"
    "</configuration>\n";

}  // namespace

TEST_CASE("the folders of every client are read from its own files") {
    const struct {
        std::string_view files;
        std::string expected;
    } rows[] = {
        {"", ""},
        {syncthing, "Syncthing ~/Sync Planner & more\nSyncthing ~/Caf\xc3\xa9 c3d4 paused\n"},
        // The first of its places counts.
        {"-- .local/state/syncthing/config.xml\n"
         "<configuration><folder id='x' path='~/Old'/></configuration>\n"
         "-- state/syncthing/config.xml\n"
         "<configuration><folder id='x' path='~/New'/></configuration>\n",
         "Syncthing ~/New x\n"},
        {"-- .config/Nextcloud/nextcloud.cfg\n"
         "[General]\nclientVersion=3.7.3\nlocalPath=HOME/No\n\n"
         "[Accounts]\nversion=2\n0\\url=https://cloud.example.org\n"
         "0\\Folders\\1\\localPath=HOME/Nextcloud/\n0\\Folders\\1\\paused=false\n"
         "0\\Folders\\1\\targetPath=/\n0\\Folders\\1\\journalPath=.sync_0123456789ab.db\n"
         "0\\Folders\\a%20b\\localPath=\"HOME/With, comma; \\\"quotes\\\" and \\\\\"\n"
         "0\\FoldersWithPlaceholders\\1\\localPath=HOME/B\\xfc\\x63her/\\xd83d\\xdcc1\\x41\n"
         "1\\Multifolders\\2\\localPath=HOME/Two\n1\\Multifolders\\2\\paused=true\n"
         "1\\Odd\\2\\localPath=HOME/Odd\n1\\localPath=HOME/Odd\nlocalPath=HOME/Odd\n"
         "[Proxy]\n0\\Folders\\1\\localPath=HOME/Odd\n",
         "Nextcloud ~/B\xc3\xbc"
         "cher/\xf0\x9f\x93\x81"
         "A\nNextcloud ~/Nextcloud\n"
         "Nextcloud ~/With, comma; \"quotes\" and \\\nNextcloud ~/Two paused\n"},
        {"-- .var/app/com.nextcloud.desktopclient.nextcloud/config/Nextcloud/nextcloud.cfg\n"
         "[Accounts]\r\n0\\Folders\\1\\localPath=HOME/Flat\r\n"
         "-- .config/ownCloud/owncloud.cfg\n[Accounts]\n"
         "0\\Folders\\{5f-1}\\localPath=HOME/ownCloud\n"
         "0\\Folders\\{5f-1}\\displayString=Personal\n",
         "Nextcloud ~/Flat\nownCloud ~/ownCloud Personal\n"},
        {"-- .dropbox/info.json\n"
         "{\"personal\": {\"path\": \"HOME/Dropbox\", \"host\": 1, \"is_team\": false},"
         " \"business\": {\"path\": \"HOME/Dropbox (Work)\"}, \"odd\": {\"path\": 3}, \"x\": []}\n",
         "Dropbox ~/Dropbox personal\nDropbox ~/Dropbox (Work) business\n"},
        {"-- .config/maestral/maestral.ini\n[auth]\npath = /no\n[sync]\npath = HOME/Dropbox (M)\n"
         "-- .config/maestral/work.ini\n[sync]\npath = '~/Work'\n-- "
         ".config/maestral/x.txt\n[sync]\n"
         "path = /no\n",
         "Maestral ~/Dropbox (M) maestral\nMaestral ~/Work work\n"},
        {"-- .config/onedrive/config\n# sync_dir = \"~/No\"\nsync_dir = \"~/OneDrive Home/\"\n"
         "-- .config/onedrive-work/config\nmonitor_interval = \"300\"\n"
         "-- .config/onedrive-gui/profiles\nsync_dir = \"~/No\"\n",
         "OneDrive ~/OneDrive Home\nOneDrive ~/OneDrive onedrive-work\n"},
        {"-- .config/onedrive/refresh_token\nabc\n", "OneDrive ~/OneDrive\n"},
        // What two clients know is told once.
        {"-- .dropbox/info.json\n{\"personal\": {\"path\": \"HOME/Dropbox/\"}}\n"
         "-- .config/maestral/maestral.ini\n[sync]\npath = HOME/Dropbox\n",
         "Dropbox ~/Dropbox personal\n"},
    };
    for (const auto& row : rows) {
        checkFolders(row.files, row.expected);
    }
}

TEST_CASE("files that are not understood tell nothing, and the other clients' still do") {
    const struct {
        std::string name;
        std::string bytes;
        std::string expected = "";
    } rows[] = {
        {".config/syncthing/config.xml", ""},
        {".config/syncthing/config.xml", "<configuration><folder path='~/Sync'></folder>"},
        {".config/syncthing/config.xml", "<configuration><folder path='\xff/x'/></configuration>"},
        {".config/syncthing/config.xml", "<folder path='~/Sync'/>"},
        {".config/syncthing/config.xml", std::string(1 << 20, '<')},
        {".config/Nextcloud/nextcloud.cfg", std::string("\0\xff[Accounts]\n\\\\=\n=\n[\n]", 22)},
        {".config/Nextcloud/nextcloud.cfg", "[Accounts]\n0\\Folders\\1\\localPath=/a\\x0/b\n"},
        {".config/Nextcloud/nextcloud.cfg", "[Accounts]\n0\\Folders\\1\\localPath=/a\\xd83d\\x\\",
         "Nextcloud /a\xef\xbf\xbdx\n"},
        {".config/Nextcloud/nextcloud.cfg", "[Accounts]\n0\\Folders\\1\\paused=true\n"},
        {".dropbox/info.json", "[\"path\"]"},
        {".dropbox/info.json", "{\"personal\": {\"path\": \"/home/u"},
        {".dropbox/info.json", std::string(100000, '[')},
        {".dropbox/info.json", "{\"a\": {\"path\": \"/x\"}}" + std::string(5 << 20, ' ')},
        {".ccnet/seafile.ini", "relative\n"},
        {".pcloud/data.db", "SQLite format 3" + std::string(5000, '\0')},
        {".pcloud/data.db", std::string(5000, '\xff')},
    };
    for (const auto& row : rows) {
        CAPTURE(row.name);
        CAPTURE(row.bytes.substr(0, 80));
        const Home home("-- .config/maestral/maestral.ini\n[sync]\npath = ~/M\n");
        home.folder.write(row.name, row.bytes);
        const auto before = stateOf(home.folder);
        CHECK(home.folders() == row.expected + "Maestral ~/M maestral\n");
        CHECK(stateOf(home.folder) == before);
    }
}

TEST_CASE("what is no regular file is never waited for") {
    const Home home("");
    for (const char* name :
         {".config/syncthing/config.xml", ".config/Nextcloud/nextcloud.cfg", ".dropbox/info.json",
          ".config/maestral/maestral.ini", ".ccnet/seafile.ini", ".pcloud/data.db"}) {
        home.folder.mkdir(std::filesystem::path(name).parent_path().string());
        REQUIRE(::mkfifo((home.folder / name).c_str(), 0600) == 0);
    }
    home.folder.mkdir(".config/onedrive/config");
    CHECK(home.folders() == "OneDrive ~/OneDrive\n");
}

TEST_CASE("databases are read without a trace, also while their client has them open") {
    const struct {
        std::string before;
        std::string after;  // done once the first part is in the database
    } journals[] = {
        {"", ""},
        {"PRAGMA journal_mode = WAL;", ""},
        {"PRAGMA journal_mode = WAL;",
         "PRAGMA wal_checkpoint(TRUNCATE); CREATE TABLE other(x); INSERT INTO other VALUES(1);"},
        {"", "BEGIN EXCLUSIVE;"},
    };
    for (const auto& journal : journals) {
        CAPTURE(journal.before + journal.after);
        const Home home("-- .ccnet/seafile.ini\nHOME/Sea file%20?/data\n");
        const auto checkpoint = journal.before.empty() ? "" : "PRAGMA wal_checkpoint(FULL);";
        const Database seafile = makeDatabase(
            home.folder / "Sea file%20?/data/repo.db",
            journal.before +
                "CREATE TABLE RepoProperty(repo_id CHAR(37), key VARCHAR(20), value TEXT);"
                "INSERT INTO RepoProperty VALUES('r1', 'worktree', '" +
                home.folder / "Seafile/Notes" +
                "'), ('r1', 'server-url', 'https://x'), ('r2', 'worktree', 7),"
                "('r3', 'worktree', x'2f61'), ('r4', 'worktree', NULL);" +
                checkpoint + journal.after);
        const Database pCloud =
            makeDatabase(home.folder / ".pcloud/data.db",
                         journal.before +
                             "CREATE TABLE syncfolder(id INTEGER PRIMARY KEY, localpath TEXT);"
                             "INSERT INTO syncfolder(localpath) VALUES('~/pCloud/'), ('no path');" +
                             checkpoint + journal.after);
        const auto before = stateOf(home.folder);
        CHECK(home.folders() == "Seafile ~/Seafile/Notes\npCloud ~/pCloud\n");
        CHECK(stateOf(home.folder) == before);
    }
}

TEST_CASE("a database without end is left alone") {
    const Home home("");
    makeDatabase(home.folder / ".pcloud/data.db",
                 "CREATE VIEW syncfolder AS WITH RECURSIVE n(i) AS "
                 "(SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT '/a' || i AS localpath FROM n;");
    CHECK(home.folders().empty());
}
