// SPDX-License-Identifier: MIT
#pragma once

#include "app/findings.h"
#include "app/services.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// Reads every note and tells how many there are and which are doubtful.
void examineNotes(Services& services, store::NoteReader::Options options, Findings& findings);

}  // namespace tessaly::app
