// SPDX-License-Identifier: MIT
#define DOCTEST_CONFIG_IMPLEMENT
#include <QApplication>

#include <doctest/doctest.h>

#include "desktop/theme.h"

int main(int argc, char** argv) {
    const QApplication application{argc, argv};
    tessaly::desktop::Theme::instance().apply({});
    return doctest::Context{argc, argv}.run();
}
