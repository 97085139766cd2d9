// SPDX-License-Identifier: MIT
#define DOCTEST_CONFIG_IMPLEMENT
#include <QApplication>

#include <doctest/doctest.h>

#include "desktop/theme.h"
#include "platform/trash_return.h"
#include "support/environment.h"
#include "support/temp_folder.h"

int main(int argc, char** argv) {
    // GLib looks up the user's folders once in a process, for the trash.
    const tessaly::tests::TempFolder home;
    const tessaly::tests::Environment environment({{"XDG_DATA_HOME", home.mkdir("data")}});
    (void)tessaly::platform::trashReturn()(home / "nothing");
    const QApplication application{argc, argv};
    tessaly::desktop::Theme::instance().apply({});
    return doctest::Context{argc, argv}.run();
}
