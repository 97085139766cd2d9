// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>

#include "support/temp_folder.h"

namespace tessaly::tests {

/// A folder with one of everything that may stand where a file is expected.
struct OddThings {
    TempFolder folder;

    OddThings() {
        folder.write("note", "text");
        folder.mkdir("folder");
        ::mkfifo((folder / "pipe").c_str(), 0600);
        folder.link("toNote", "note");
        folder.link("toFolder", "folder");
        folder.link("toNothing", "missing");
        folder.link("loop", "loop");
    }
};

}  // namespace tessaly::tests
