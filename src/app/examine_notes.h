// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/findings.h"
#include "app/services.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// Reads every note and tells how many there are and which are doubtful. Returns the sub-folders of
/// the kinds' folders, relative to the data folder, in no order.
std::vector<std::string> examineNotes(Services& services, store::NoteReader::Options options,
                                      Findings& findings);

}  // namespace tessaly::app
