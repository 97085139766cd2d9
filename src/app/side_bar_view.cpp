// SPDX-License-Identifier: MIT
#include "app/side_bar_view.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "base/note_type.h"
#include "grammar/note_title.h"
#include "search/side_bar_order.h"
#include "settings/setting_values.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/tag_index.h"

namespace tessaly::app {
namespace {

using Note = store::GeneralNotes::Pointer;

Note lightNote(const store::NoteFile& file, std::string_view text) {
    store::GeneralNote light;
    light.stamp = file.stamp;
    light.note.filename = file.filename;
    light.note.title = grammar::noteTitle(text, store::baseName(file.filename));
    light.note.contentChangedDate = file.stamp.modified;
    light.note.contentCreatedDate = file.stamp.created;
    return std::make_shared<const store::GeneralNote>(std::move(light));
}

/// What one worker has read.
struct Part {
    grammar::NoteScanner scanner;
    std::vector<Note> notes;
    store::TagDifferences hashtags;
    store::TagDifferences mentions;

    void add(const store::NoteFile& file, const store::CountSettings& settings) {
        const std::string_view text = store::decodedText(file.bytes).value_or("");
        const store::NoteModel model({}, file.type, text, settings, scanner);
        hashtags.add({}, model.hashTags);
        mentions.add({}, model.atTags);
        if (file.type == base::NoteType::note) {
            notes.push_back(lightNote(file, text));
        }
    }
};

std::shared_ptr<const store::GeneralNotes> joinedNotes(std::vector<Part>& parts) {
    std::vector<Note> notes;
    for (Part& part : parts) {
        std::move(part.notes.begin(), part.notes.end(), std::back_inserter(notes));
    }
    std::sort(notes.begin(), notes.end(),
              [](const Note& a, const Note& b) { return a->note.filename < b->note.filename; });
    return std::make_shared<const store::GeneralNotes>(std::move(notes));
}

std::shared_ptr<const store::TagCounts> joinedTags(const std::vector<Part>& parts,
                                                   store::TagDifferences Part::*tags) {
    store::TagCounts counts;
    for (const Part& part : parts) {
        counts = (part.*tags).appliedTo(counts);
    }
    return std::make_shared<const store::TagCounts>(std::move(counts));
}

}  // namespace

SideBarView sideBarView(Services& services, store::NoteReader::Options options) {
    const store::CountSettings settings = services.countSettings();
    const store::NoteCache& cache = services.noteCache();
    std::vector<Part> parts(cache.workers());
    options.visitFolder = [&](std::size_t worker, base::NoteType type, std::string_view folder) {
        if (type == base::NoteType::note) {
            parts[worker].notes.push_back(store::folderOfNotes(std::string(folder)));
        }
    };
    SideBarView view;
    view.report = cache.visit(options, [&](std::size_t worker, const store::NoteFile& file) {
        parts[worker].add(file, settings);
    });
    if (view.report.cancelled) {
        return view;
    }
    search::SideBarNotes notes{joinedNotes(parts),
                               joinedTags(parts, &Part::hashtags),
                               joinedTags(parts, &Part::mentions),
                               {},
                               services.globals().sortBy()};
    auto filters = services.filterHelper().list();
    if (filters) {
        notes.filters = std::move(*filters);
    } else {
        view.noFilters = filters.failure();
    }
    view.sideBar = std::make_unique<search::SideBar>(expandedSideBarItems(services));
    view.sideBar->update(notes);
    return view;
}

search::SideBarKeys expandedSideBarItems(Services& services) {
    const auto keys = services.globals().expandedSideBarItems();
    return {keys.begin(), keys.end()};
}

base::Result<base::Done> keepExpandedSideBarItems(Services& services,
                                                  const search::SideBarKeys& expanded) {
    return services.globals().set("expandedSideBarItems", settings::textOf(std::vector<std::string>(
                                                              expanded.begin(), expanded.end())));
}

void sortAsInSideBar(std::vector<TagRow>& tags) {
    std::sort(tags.begin(), tags.end(), [](const TagRow& a, const TagRow& b) {
        return search::tagComesBefore(a.tag, b.tag);
    });
}

}  // namespace tessaly::app
