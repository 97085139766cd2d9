// SPDX-License-Identifier: MIT
// scroll_rows ROWS: shows that many results in a list, and that many notes in a folder of the
// sidebar, scrolls through both, and prints a line of JSON: for "list" and "sideBar" the
// milliseconds of each paint, passed and of the processor, and what showing took.
#include <QApplication>
#include <QScrollBar>
#include <QWindow>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fmt/core.h>
#include <fmt/ranges.h>

#include "app/list_feed.h"
#include "base/shared_text.h"
#include "desktop/result_list.h"
#include "desktop/side_bar_model.h"
#include "desktop/side_bar_tree.h"
#include "desktop/theme.h"
#include "moment.h"
#include "search/side_bar.h"

namespace {

using namespace tessaly;
using bench::Moment;
using search::SearchResultItem;
using search::SearchResultType;

constexpr int rowsOfGroup = 5;

const char* const lineTexts[] = {
    "* Call Bob about the #project/alpha plan >2019-12-31",
    "* [x] Send the minutes to @ann(office) @done(2019-12-30 10:15)",
    "- A line that says nothing of tasks, but a good deal of the meeting that went before it",
    "* [>] Grüße an das Büro in Zürich bestellen >2020-01-07",
    "* [-] 会議の議事録を送る #仕事",
};

SearchResultItem sectionRow(std::size_t group) {
    SearchResultItem item;
    item.title = fmt::format("Note {} of the project", group);
    item.type = SearchResultType::section;
    item.filename = fmt::format("Work/Project {}/Note {}.txt", group % 100, group);
    item.position = search::NotesViewItemPosition::firstInGroup;
    return item;
}

SearchResultItem lineRow(std::size_t row) {
    constexpr grammar::TodoType types[] = {grammar::TodoType::open, grammar::TodoType::done,
                                           grammar::TodoType::text, grammar::TodoType::scheduled,
                                           grammar::TodoType::cancelled};
    SearchResultItem item;
    item.content = lineTexts[row % std::size(lineTexts)];
    item.title = item.content;
    item.type = SearchResultType::noteTodo;
    item.lineType = types[row % std::size(types)];
    item.lineIndex = row % rowsOfGroup;
    item.highlightRange = {2, 4};
    return item;
}

app::ListView listOf(std::size_t rows) {
    app::ListView view;
    view.request.query = "meeting";
    view.isFinal = true;
    for (std::size_t row = 0; row < rows; ++row) {
        SearchResultItem item =
            row % rowsOfGroup == 0 ? sectionRow(row / rowsOfGroup) : lineRow(row);
        item.id = static_cast<std::int64_t>(row + 1);
        item.noteType = base::NoteType::note;
        item.groupFilename = item.filename = fmt::format("Work/Note {}.txt", row / rowsOfGroup);
        view.results.items.push_back(std::move(item));
    }
    view.results.total = rows;
    return view;
}

std::shared_ptr<const store::GeneralNotes> notesOf(std::size_t count) {
    std::vector<store::GeneralNotes::Pointer> notes{store::folderOfNotes("Big")};
    grammar::NoteScanner scanner;
    for (std::size_t number = 0; number < count; ++number) {
        notes.push_back(store::generalNote(
            fmt::format("Big/Note {:06}.txt", number),
            base::SharedText(fmt::format("# Note {} of a Büro\n", number)), {}, {}, scanner));
    }
    return std::make_shared<const store::GeneralNotes>(std::move(notes));
}

/// Steps of a wheel, of a page, and to anywhere, each painted whole.
void scrollThrough(const char* name, QAbstractItemView& view, const bench::Taken& shown) {
    QScrollBar& bar = *view.verticalScrollBar();
    std::vector<int> places;
    for (int step = 1; step <= 300; ++step) {
        places.push_back(step * 60);
    }
    for (int step = 1; step <= 300; ++step) {
        places.push_back(step * view.viewport()->height());
    }
    std::mt19937 engine{1};
    std::uniform_int_distribution<int> anywhere(0, bar.maximum());
    std::generate_n(std::back_inserter(places), 300, [&] { return anywhere(engine); });
    std::vector<double> passed;
    std::vector<double> cpu;
    for (const int place : places) {
        const Moment begin = Moment::now();
        bar.setValue(place);
        view.viewport()->repaint();
        const bench::Taken taken = Moment::now() - begin;
        passed.push_back(taken.passed);
        cpu.push_back(taken.cpu);
    }
    fmt::print(
        "\"{}\": {{\"height\": {}, \"shown\": {:.1f}, \"passed\": [{:.3f}], \"cpu\": [{:.3f}]}}",
        name, bar.maximum(), shown.passed, fmt::join(passed, ", "), fmt::join(cpu, ", "));
}

void showWindow(QWidget& view, const QSize& size) {
    view.resize(size);
    view.show();
    while (view.windowHandle() == nullptr || !view.windowHandle()->isExposed()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QApplication::processEvents();
}

void scrollList(std::size_t rows) {
    desktop::ResultList list;
    showWindow(list, {640, 1000});
    const app::ListView view = listOf(rows);
    const Moment begin = Moment::now();
    list.setView(view);
    list.repaint();
    scrollThrough("list", list, Moment::now() - begin);
}

void scrollSideBar(std::size_t rows) {
    search::SideBar sideBar({});
    desktop::SideBarModel model(sideBar);
    desktop::SideBarTree tree;
    tree.setModel(&model);
    showWindow(tree, {420, 1000});
    search::SideBarNotes notes;
    notes.generalNotes = notesOf(rows);
    sideBar.update(notes);
    model.flushChanges();
    const Moment begin = Moment::now();
    tree.expand(model.indexOfKey("folder:Big").parent());
    tree.expand(model.indexOfKey("folder:Big"));
    tree.repaint();
    scrollThrough("sideBar", tree, Moment::now() - begin);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const int rows = argc == 2 ? std::atoi(argv[1]) : 0;
    if (rows <= 0) {
        std::fputs("usage: scroll_rows ROWS\n", stderr);
        return 2;
    }
    desktop::Theme::instance().apply({});
    fmt::print("{{");
    scrollList(static_cast<std::size_t>(rows));
    fmt::print(", ");
    scrollSideBar(static_cast<std::size_t>(rows));
    fmt::print("}}\n");
}
