// SPDX-License-Identifier: MIT
#include "desktop/start_options.h"

#include <QCommandLineParser>

#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

QCommandLineOption folderOption() {
    return {QStringLiteral("root"), trText("The data folder"), QStringLiteral("DIR")};
}
QCommandLineOption timeOption() {
    return {QStringLiteral("now"), trText("What the time is, for tests: 2019-03-05T09:00:00"),
            QStringLiteral("TIME")};
}
QCommandLineOption serviceOption() {
    return {QStringLiteral("gapplication-service"),
            trText("Started by the session bus: wait to be asked for a window")};
}
QCommandLineOption startHelpOption() {
    return {{QStringLiteral("h"), QStringLiteral("help")}, trText("Tell of these options")};
}
QCommandLineOption versionOption() {
    return {{QStringLiteral("v"), QStringLiteral("version")}, trText("Tell the version")};
}

void describe(QCommandLineParser& parser) {
    parser.setApplicationDescription(trText("A planner that keeps everything in plain text."));
    parser.addOptions(
        {folderOption(), timeOption(), serviceOption(), startHelpOption(), versionOption()});
    parser.addPositionalArgument(QStringLiteral("URL"), trText("tessaly:// addresses to open"),
                                 QStringLiteral("[URL…]"));
}

std::optional<std::string> given(const QCommandLineParser& parser,
                                 const QCommandLineOption& option) {
    if (!parser.isSet(option)) {
        return std::nullopt;
    }
    return utf8(parser.value(option));
}

}  // namespace

StartOptions readStartOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    describe(parser);
    StartOptions options;
    if (!parser.parse(arguments)) {
        options.misuse = utf8(parser.errorText());
        return options;
    }
    options.root = given(parser, folderOption());
    options.now = given(parser, timeOption());
    options.isService = parser.isSet(serviceOption());
    options.help = parser.isSet(startHelpOption());
    options.version = parser.isSet(versionOption());
    options.urls = parser.positionalArguments();
    return options;
}

QString startHelp() {
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText();
}

}  // namespace tessaly::desktop
