// SPDX-License-Identifier: MIT
#include <filesystem>
#include <thread>

#include "base/utf8.h"
#include "platform/json_user_defaults.h"
#include "platform/odd_things.h"
#include "platform/user_defaults_contract.h"
#include "support/on_threads.h"
#include "support/temp_folder.h"

namespace tessaly::platform {
namespace {

using base::Failure;
using ports::DefaultsValue;
using tests::TempFolder;

TEST_CASE("a JSON file keeps the contract") {
    const TempFolder folder;
    tests::checkUserDefaults(
        [&] { return std::make_unique<JsonUserDefaults>(folder / "made/settings.json"); });
    CHECK(folder.names("made") == std::vector<std::string>{"settings.json"});
}

TEST_CASE("reading, and taking away what is not there, leaves no trace") {
    const TempFolder folder;
    JsonUserDefaults store(folder / "made/settings.json");
    CHECK(!store.valueForKey("a"));
    CHECK(!store.problem());
    CHECK(store.removeValue("a"));
    CHECK(folder.names().empty());
}

TEST_CASE("what others wrote stays, in its order") {
    const TempFolder folder;
    const std::string file = folder.write("settings.json",
                                          "{\n"
                                          "    \"z\": {\n"
                                          "        \"y\": null\n"
                                          "    },\n"
                                          "    \"huge\": 18446744073709551615,\n"
                                          "    \"nothing\": null,\n"
                                          "    \"b\": 1,\n"
                                          "    \"a\": 2.50\n"
                                          "}\n");
    JsonUserDefaults store(file);
    for (const char* foreign : {"z", "huge", "nothing"}) {
        CAPTURE(foreign);
        CHECK(!store.valueForKey(foreign));
    }
    CHECK(store.keys() == std::vector<std::string>{"a", "b", "huge", "nothing", "z"});
    REQUIRE(store.setValue("b", std::string("new")));
    REQUIRE(store.setValue("last", false));
    REQUIRE(store.removeValue("nothing"));
    CHECK(folder.read("settings.json") ==
          "{\n"
          "    \"z\": {\n"
          "        \"y\": null\n"
          "    },\n"
          "    \"huge\": 18446744073709551615,\n"
          "    \"b\": \"new\",\n"
          "    \"a\": 2.5,\n"
          "    \"last\": false\n"
          "}\n");
}

TEST_CASE("a change from outside is seen, also one of the same size in the same instant") {
    const TempFolder folder;
    JsonUserDefaults store(folder / "settings.json");
    CHECK(!store.valueForKey("a"));
    for (int i = 0; i < 50; ++i) {
        const std::string digit = std::to_string(i % 10);
        folder.write("settings.json", "{\"a\": " + digit + "}");
        CHECK((store.valueForKey("a") == DefaultsValue(std::int64_t{i % 10})));
    }
    // Once the file has been quiet for a while, the store relies on its dates.
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    CHECK(store.valueForKey("a"));
    folder.write("settings.json", "{\"a\": 5}");
    CHECK((store.valueForKey("a") == DefaultsValue(std::int64_t{5})));
    std::filesystem::remove(folder / "settings.json");
    CHECK(!store.valueForKey("a"));
}

TEST_CASE("a damaged file reads as empty and is never written over") {
    const TempFolder folder;
    struct Row {
        std::string bytes;
        std::string place;  ///< behind the file's name
    };
    for (const Row& row : std::vector<Row>{
             {"{\n  \"a\": true,\n  \"b\": tru\n}\n", ":3:11: "},
             {"{\"a\": true", ":1:11: "},
             {"{\"a\": \"\xff\"}", ":1:8: "},
             {"{\"a\": 1} {\"b\": 2}", ":1:10: "},
             {"// note\n{}", ":1:1: "},
             {"{\"a\": 1e999}", ": "},
             {"[1, 2]", ": "},
             {std::string(2, '\0'), ":1:1: "},
             {"{\"a\": " + std::string(100000, '[') + std::string(100000, ']') + "}", ": "},
         }) {
        CAPTURE(row.bytes.substr(0, 40));
        const std::string file = folder.write("settings.json", row.bytes);
        JsonUserDefaults store(file);
        CHECK(!store.valueForKey("a"));
        CHECK(store.keys().empty());
        const auto problem = store.problem();
        REQUIRE(problem);
        CHECK(problem->kind == Failure::Kind::malformed);
        CHECK(problem->description.substr(0, file.size() + row.place.size()) == file + row.place);
        CHECK(problem->description.size() > file.size() + row.place.size() + 5);
        CHECK(base::isUtf8(problem->description));

        const auto stored = store.setValue("a", true);
        REQUIRE(!stored);
        CHECK(stored.failure().description == problem->description);
        CHECK(!store.removeValue("a").ok());
        CHECK((folder.read("settings.json") == row.bytes));
        CHECK(folder.names() == std::vector<std::string>{"settings.json"});

        // Mended by hand, it is a store again, without a new start.
        folder.write("settings.json", "{\"a\": 1}");
        CHECK(!store.problem());
        CHECK(store.setValue("b", true));
        CHECK(store.keys() == std::vector<std::string>{"a", "b"});
    }
}

TEST_CASE("a file of blanks, or with a byte-order mark, is not damaged") {
    const TempFolder folder;
    for (const char* bytes : {"", " \n\t\n", "{}", "\xef\xbb\xbf{\"b\": 1}"}) {
        CAPTURE(bytes);
        JsonUserDefaults store(folder.write("settings.json", bytes));
        CHECK(!store.problem());
        CHECK(store.setValue("a", true));
        CHECK((store.valueForKey("a") == DefaultsValue(true)));
    }
}

TEST_CASE("what stands in the file's place is told, and stays") {
    const tests::OddThings things;
    const TempFolder& folder = things.folder;
    const auto before = folder.names();
    for (const char* name : {"folder", "pipe", "note/below.json", "loop"}) {
        CAPTURE(name);
        JsonUserDefaults store(folder / name);
        CHECK(!store.valueForKey("a"));
        CHECK(!store.setValue("a", true).ok());
    }
    CHECK(JsonUserDefaults(folder / "folder").problem()->kind == Failure::Kind::notAFile);
    CHECK(folder.names() == before);
}

TEST_CASE("writers at the same time lose nothing") {
    const TempFolder folder;
    constexpr int writers = 4;
    constexpr int values = 25;
    tests::onThreads(writers, [&folder](std::size_t writer) {
        JsonUserDefaults store(folder / "settings.json");
        for (int i = 0; i < values; ++i) {
            const auto key = std::to_string(writer) + "." + std::to_string(i);
            if (!store.setValue(key, std::int64_t{i})) {
                return;
            }
        }
    });
    CHECK(JsonUserDefaults(folder / "settings.json").keys().size() == writers * values);
}

}  // namespace
}  // namespace tessaly::platform
