// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "app/note_lists.h"
#include "app/services.h"
#include "base/failure.h"
#include "search/side_bar.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// The sidebar of all notes as they are now.
struct SideBarView {
    std::unique_ptr<search::SideBar> sideBar;  ///< null when the reading was cancelled
    store::ReadReport report;
    std::optional<base::Failure> noFilters;  ///< why they could not be listed
};

/// Reads all notes once, for who does not hold them. Of notes the tree keeps no texts.
SideBarView sideBarView(Services& services, store::NoteReader::Options options = {});

/// What the user has expanded, as the setting "expandedSideBarItems" keeps it between runs.
search::SideBarKeys expandedSideBarItems(Services& services);
base::Result<base::Done> keepExpandedSideBarItems(Services& services,
                                                  const search::SideBarKeys& expanded);

/// Brings tags into the order in which the sidebar shows them.
void sortAsInSideBar(std::vector<TagRow>& tags);

}  // namespace tessaly::app
