// SPDX-License-Identifier: MIT
#include <pwd.h>
#include <string>
#include <unistd.h>

#include <doctest/doctest.h>

#include "platform/folder_cloud_container.h"
#include "platform/system_locale.h"
#include "platform/xdg_folders.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace tessaly::platform {
namespace {

using tests::Environment;
using tests::TempFolder;

struct LocaleVariables {
    const char* lang = "";
    const char* all = "";
    const char* time = "";
    const char* messages = "";
    const char* language = "";
};

TEST_CASE("the environment's locale is ICU's and gettext's") {
    struct Row {
        LocaleVariables variables;
        const char* formats;
        const char* languages;
    };
    for (const Row& row : std::initializer_list<Row>{
             {{}, "en_US_POSIX", ""},
             {{.lang = "C.UTF-8"}, "en_US_POSIX", ""},
             {{.lang = "de_DE.UTF-8"}, "de_DE", "de_DE:de"},
             {{.lang = "en_GB.UTF-8"}, "en_GB", ""},
             {{.lang = "de_DE.UTF-8", .time = "en_GB.UTF-8"}, "en_GB", "de_DE:de"},
             {{.lang = "de_DE.UTF-8", .messages = "C"}, "de_DE", ""},
             {{.lang = "de_DE", .all = "fr_FR", .time = "es_ES", .messages = "it_IT"},
              "fr_FR",
              "fr_FR:fr"},
             // Modifiers.
             {{.lang = "de_DE@euro"}, "de_DE", "de_DE@euro:de@euro:de_DE:de"},
             {{.lang = "sr_RS.UTF-8@latin"}, "sr_Latn_RS", "sr_RS@latin:sr@latin:sr_RS:sr"},
             {{.time = "ca_ES.UTF-8@valencia"}, "ca_ES_VALENCIA", ""},
             {{.time = "th_TH@calendar=gregorian"}, "th_TH@calendar=gregorian", ""},
             // A list of languages goes before, unless the locale is "C".
             {{.lang = "de_DE.UTF-8", .language = "pt_BR:fr"}, "de_DE", "pt_BR:pt:fr"},
             {{.lang = "de_DE.UTF-8", .language = "de_AT:de_DE"}, "de_DE", "de_AT:de:de_DE"},
             {{.lang = "C", .language = "de"}, "en_US_POSIX", ""},
             {{.lang = "C.UTF-8", .language = "de"}, "en_US_POSIX", "de"},
             {{.language = "de"}, "en_US_POSIX", "de"},
             {{.lang = "de_DE.UTF-8", .language = "fr:en:de"}, "de_DE", "fr"},
             {{.lang = "de_DE.UTF-8", .language = ":fr:"}, "de_DE", "fr"},
         }) {
        const LocaleVariables& set = row.variables;
        CAPTURE(set.lang);
        CAPTURE(set.time);
        CAPTURE(set.language);
        const Environment environment{{"LANG", set.lang},
                                      {"LC_ALL", set.all},
                                      {"LC_TIME", set.time},
                                      {"LC_MESSAGES", set.messages},
                                      {"LANGUAGE", set.language}};
        const auto locale = systemLocale();
        CHECK(locale.formats == row.formats);
        CHECK(locale.languages == row.languages);
    }
}

TEST_CASE("folders come from the environment where it is absolute, else from home") {
    const Environment environment{{"HOME", "/home/ada/"},
                                  {"XDG_DATA_HOME", "/data//"},
                                  {"XDG_CONFIG_HOME", "relative/config"},
                                  {"XDG_STATE_HOME", ""},
                                  {"XDG_CACHE_HOME", std::nullopt}};
    const auto folders = xdgFolders("planner");
    CHECK(folders.data == "/data");
    CHECK(folders.config == "/home/ada/.config/planner");
    CHECK(folders.state == "/home/ada/.local/state/planner");
    CHECK(folders.cache == "/home/ada/.cache/planner");
}

TEST_CASE("without a usable HOME the user database knows home") {
    const passwd* entry = ::getpwuid(::getuid());
    REQUIRE(entry != nullptr);
    const std::string home = entry->pw_dir;
    using Value = Environment::Value;
    for (const Value& unusable : {Value(), Value(""), Value("here")}) {
        const Environment environment{{"HOME", unusable}, {"XDG_DATA_HOME", std::nullopt}};
        CHECK(homeFolder() == home);
        CHECK(xdgFolders("planner").data == home + "/.local/share");
    }
}

TEST_CASE("the cloud drive is the folder that is named, while it is there") {
    const TempFolder folder;
    const Environment environment{{"HOME", folder.path()}};
    folder.mkdir("cloud");
    folder.write("file", "");
    folder.link("link", "cloud");
    std::string setting;
    const auto container = folderCloudContainer([&] { return setting; });

    const auto check = [&](const std::string& named, const std::optional<std::string>& expected) {
        CAPTURE(named);
        setting = named;
        CHECK(container() == expected);
    };
    check("", std::nullopt);
    check("cloud", std::nullopt);
    check(folder / "missing", std::nullopt);
    check(folder / "file", std::nullopt);
    check("~other/cloud", std::nullopt);
    check(folder / "cloud", folder / "cloud");
    check(folder / "link", folder / "link");
    check("~/cloud", folder / "cloud");
    check("~", folder.path());
    std::filesystem::remove(folder / "cloud");
    check("~/cloud", std::nullopt);
}

}  // namespace
}  // namespace tessaly::platform
