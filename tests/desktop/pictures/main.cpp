// SPDX-License-Identifier: MIT
// tessaly_pictures demo|empty NOTES PICTURES ENDING LOOK[,LOOK...] [VIEW...]
// Renders views of the window on the data folder NOTES into the folder PICTURES. Locale, direction
// and scale are the process's own.
#include <QApplication>
#include <algorithm>
#include <cstdio>

#include "app/start_up.h"
#include "base/localisation.h"
#include "desktop/pictures/stage.h"
#include "desktop/qt_text.h"
#include "host/program_host.h"
#include "platform/json_user_defaults.h"
#include "platform/system_locale.h"
#include "search/filter_helper.h"

namespace {

using namespace tessaly;
using desktop::Theme;

struct Arguments {
    bool isDemo = true;
    std::string notes;
    QString pictures;
    QString ending;
    std::vector<pictures::NamedLook> looks;
    QStringList views;  ///< empty: all
};

std::vector<pictures::NamedLook> looksNamed(const QString& names) {
    const pictures::NamedLook all[] = {
        {QStringLiteral("light"), {}},
        {QStringLiteral("dark"), {.scheme = Theme::Scheme::dark, .accent = {}}},
        {QStringLiteral("contrast"), {.contrast = Theme::Contrast::high, .accent = {}}},
        {QStringLiteral("darkcontrast"),
         {.scheme = Theme::Scheme::dark, .contrast = Theme::Contrast::high, .accent = {}}},
    };
    const QStringList wanted = names.split(u',');
    std::vector<pictures::NamedLook> looks;
    std::copy_if(std::begin(all), std::end(all), std::back_inserter(looks),
                 [&](const auto& look) { return wanted.contains(look.name); });
    return looks;
}

void saveViews(app::Services& services) {
    using search::FilterItem;
    using search::FilterParamater;
    (void)services.filterHelper().save("Open this week",
                                       {FilterItem{FilterParamater::open},
                                        FilterItem{FilterParamater::timeframe, "fptf_thisWeek"}});
    (void)services.filterHelper().save("Done lately", {FilterItem{FilterParamater::done}});
}

int paint(const Arguments& arguments) {
    const ports::UserLocale locale = platform::systemLocale();
    base::openCatalogue(host::catalogueFolder(), locale.languages);
    const auto host = host::ProgramHost::make(
        {arguments.notes, "2019-03-05T10:12:00", host::HostOptions::Stay::yes, -1, {}}, locale);
    if (!host) {
        std::fprintf(stderr, "%s\n", host.failure().description.c_str());
        return 1;
    }
    app::Services& services = (*host)->services();
    app::startUp(services);
    if (arguments.isDemo) {
        saveViews(services);
    }
    platform::JsonUserDefaults state{services.ports().folders.state + "/window.json"};
    Theme::instance().apply(arguments.looks.front().look);
    pictures::Stage stage{services, state, arguments.pictures, arguments.ending, arguments.looks};
    std::vector<pictures::View> views = pictures::emptyViews();
    if (arguments.isDemo) {
        // The last of the demo's ends all writing.
        views = pictures::editorViews();
        const auto more = pictures::demoViews();
        views.insert(views.end(), more.begin(), more.end());
    }
    for (const auto& view : views) {
        if (arguments.views.empty() || arguments.views.contains(QLatin1String(view.name))) {
            view.show(stage);
        }
    }
    return stage.isWhole() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application{argc, argv};
    QApplication::setCursorFlashTime(0);
    const QStringList words = QApplication::arguments();
    if (words.size() < 6 || looksNamed(words[5]).empty()) {
        std::fputs("tessaly_pictures demo|empty NOTES PICTURES ENDING LOOK[,LOOK...] [VIEW...]\n",
                   stderr);
        return 2;
    }
    return paint({words[1] == QLatin1String("demo"), desktop::utf8(words[2]), words[3],
                  words[4] == QLatin1String("-") ? QString() : words[4], looksNamed(words[5]),
                  words.mid(6)});
}
