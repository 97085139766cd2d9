// SPDX-License-Identifier: MIT
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "base/localisation.h"
#include "support/environment.h"
#include "support/temp_folder.h"

using namespace tessaly;
using namespace std::string_literals;

namespace {

/// A compiled catalogue: a header of seven numbers, a table of (length, offset) for the keys and
/// one for the texts, then the strings, each with a NUL behind it.
std::string compiledCatalogue(const std::map<std::string, std::string>& texts) {
    const auto count = static_cast<std::uint32_t>(texts.size());
    std::string numbers;
    std::string strings;
    const auto put = [&numbers](std::size_t number) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            numbers += static_cast<char>(number >> shift & 0xFF);
        }
    };
    constexpr std::size_t header = 28;
    for (const std::size_t number : {std::size_t{0x950412de}, std::size_t{0}, std::size_t{count},
                                     header, header + 8 * count, std::size_t{0}, std::size_t{0}}) {
        put(number);
    }
    const auto putString = [&](const std::string& text) {
        put(text.size());
        put(header + std::size_t{16} * count + strings.size());
        strings += text + '\0';
    };
    for (const auto& [key, text] : texts) {
        putString(key);
    }
    for (const auto& [key, text] : texts) {
        putString(text);
    }
    return numbers + strings;
}

class Catalogues {
public:
    Catalogues() {
        _folder.write("de/LC_MESSAGES/tessaly.mo",
                      compiledCatalogue({
                          {"",
                           "Content-Type: text/plain; charset=UTF-8\n"
                           "Plural-Forms: nplurals=2; plural=(n != 1);\n"},
                          {"Done", "Erledigt"},
                          {"menu\004Open", "Öffnen"},
                          {"%lu task\0%lu tasks"s, "%lu Aufgabe\0%lu Aufgaben"s},
                      }));
        _folder.write("fr/LC_MESSAGES/tessaly.mo",
                      compiledCatalogue({{"", "Content-Type: text/plain; charset=UTF-8\n"},
                                         {"Done", "Terminé"}}));
    }
    ~Catalogues() { std::setlocale(LC_ALL, "C"); }
    Catalogues(const Catalogues&) = delete;
    Catalogues& operator=(const Catalogues&) = delete;

    const std::string& folder() const { return _folder.path(); }

private:
    tests::TempFolder _folder;
    const tests::Environment _restored{{"LC_ALL", std::nullopt}, {"LANGUAGE", std::nullopt}};
};

}  // namespace

TEST_CASE("the most wanted language that there is, without any locale installed") {
    struct Row {
        const char* languages;
        const char* done;
    };
    const Row rows[] = {
        {"de", "Erledigt"}, {"de_AT", "Erledigt"},         {"sv:fr:de", "Terminé"},
        {"en", "Done"},     {"sv:en_GB.UTF-8:de", "Done"}, {"eng:de", "Erledigt"},
        {"sv", "Done"},
    };
    const Catalogues catalogues;
    for (const char* environment : {"C", "C.UTF-8", "xx_YY.UTF-8"}) {
        setenv("LC_ALL", environment, 1);
        for (const auto& row : rows) {
            CAPTURE(environment);
            CAPTURE(row.languages);
            base::openCatalogue(catalogues.folder(), row.languages);
            CHECK(base::tr("Done") == row.done);
        }
        CHECK(std::setlocale(LC_NUMERIC, nullptr) == "C"s);
    }
}

TEST_CASE("texts with a context, plurals, and texts that no catalogue has") {
    const Catalogues catalogues;
    CHECK(base::tr("menu", "Open") == "Open");
    base::openCatalogue(catalogues.folder(), "de");
    CHECK(base::tr("menu", "Open") == "Öffnen");
    CHECK(base::tr("Open") == "Open");
    CHECK(base::tr("button", "Done") == "Done");
    CHECK(base::tr("") == "");
    CHECK(base::trPlural("%lu task", "%lu tasks", 1) == "%lu Aufgabe");
    CHECK(base::trPlural("%lu task", "%lu tasks", 0) == "%lu Aufgaben");
    CHECK(base::trPlural("%lu day", "%lu days", 2) == "%lu days");
}
