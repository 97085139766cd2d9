// SPDX-License-Identifier: MIT
#include "app/sample_notes.h"

#include <fmt/args.h>
#include <fmt/format.h>

#include "base/localisation.h"
#include "grammar/date_tags.h"
#include "store/note_names.h"

namespace tessaly::app {
namespace {

using Fillings = fmt::dynamic_format_arg_store<fmt::format_context>;

// What the texts leave open: days and times as tags hold them, and the tasks that stand in two
// notes, where a copy must not differ from its original.
Fillings fillings(const base::LocalTime& now, base::HourCycle cycle) {
    const base::Day yesterday = base::addDays(now.day, -1);
    const auto written = [cycle](const base::LocalTime& time) {
        return grammar::writeTagDate(time, grammar::TagTime::timeAndMarker, cycle);
    };
    Fillings result;
    result.push_back(fmt::arg("yesterday", base::tagText(yesterday)));
    result.push_back(fmt::arg("today", base::tagText(now.day)));
    result.push_back(fmt::arg("tomorrow", base::tagText(base::addDays(now.day, 1))));
    result.push_back(fmt::arg("nextWeek", base::tagText(base::addDays(now.day, 7))));
    result.push_back(fmt::arg("then", written({yesterday, 9, 5, 0})));
    result.push_back(fmt::arg("now", written(now)));
    result.push_back(fmt::arg("lookAround", base::tr("Look around in Tessaly")));
    result.push_back(fmt::arg("firstNote", base::tr("Write a first note of your own")));
    result.push_back(fmt::arg("lookBack", base::tr("Look back on the first week")));
    return result;
}

std::string welcomeTitle() {
    return base::tr("Welcome to Tessaly");
}

std::string welcomeText() {
    return "# " + welcomeTitle() + "\n\n" +
           base::tr(
               "Tessaly keeps your plans in plain text: a note for every day, and as many other "
               "notes as you like. Each note is a file of its own. You can read and change it with "
               "any editor, on any device, and it will outlive every program, this one too.\n") +
           "\n" +
           base::tr(
               "## Days\n"
               "Yesterday, today, tomorrow and a day next week have a note already, each with a "
               "few tasks that show what a task can be. The commands `tessaly today` and "
               "`tessaly week` show you the days, `tessaly overdue` what was left over.\n") +
           "\n" +
           // Translators: in all these notes, signs and blanks at the start of a line, boxes, tabs
           // and the words in braces stay as they are.
           base::tr(
               "## Tasks\n"
               "A line that begins with an asterisk and a blank is a task. Its box tells how it "
               "stands:\n"
               "* An open task needs no box\n"
               "* [ ] and may have an empty one\n"
               "* [x] This one is done @done({then})\n"
               "* [-] This one is cancelled: you have decided against it\n"
               "* [>] {firstNote} >{tomorrow}\n"
               "The last one is scheduled: its copy waits in the note of tomorrow.\n") +
           "\n" +
           base::tr(
               "## Tags\n"
               "A word behind a number sign is a tag, like #ideas, and a slash puts one tag inside "
               "another, like #home/garden. A name behind an at sign is a mention, like @maria. "
               "Tags and mentions may stand in any line; `tessaly tags` and `tessaly mentions` "
               "list them.\n") +
           "\n" +
           base::tr(
               "## Lists, quotes and headings\n"
               "- A dash makes a list\n"
               "\t- and a tab before it puts an item below another\n"
               "1. A number makes a list too\n"
               "> This sign makes a quote.\n") +
           "\n" +
           base::tr(
               "### A smaller heading\n"
               "One number sign and a blank begin a title, two or three a heading below it.\n") +
           "\n" + base::tr("When you have seen enough, delete these notes. They are yours.\n");
}

std::string yesterdayText() {
    return base::tr(
               "## A day that has passed\n"
               "* [x] Install Tessaly @done({then})\n"
               "* [-] Buy a paper planner\n"
               "* [>] {lookAround} >{today}\n"
               "* Water the tomatoes #home/garden\n") +
           "\n" +
           base::tr(
               "A done task keeps the time when it was done, a cancelled one stays as a reminder "
               "of what you decided. A scheduled task has gone on to the day that it names.\n"
               "The tomatoes are still waiting: an open task of an earlier day is overdue, and "
               "today shows it until you deal with it.\n");
}

std::string todayText() {
    return base::tr(
               "## Tasks\n"
               "* [x] Open Tessaly for the first time @done({now})\n"
               "* {lookAround} <{yesterday}\n"
               "* Plan the weekend with @maria #family\n"
               "\t* [x] Look at the weather @done({now})\n"
               "\t* Find a place to stay\n"
               "\t* Ask who brings the tent\n"
               "* [>] {lookBack} >{nextWeek}\n") +
           "\n" +
           base::tr(
               "The second task came from yesterday: the date behind it leads back. The last one "
               "has been scheduled for next week, where its copy waits. Tasks that begin with a "
               "tab "
               "are parts of the task above them.\n") +
           "\n" +
           base::tr(
               "## Notes\n"
               "- Anything may stand between the tasks: what happened, what was said, what to "
               "keep\n"
               "> Write it down, then think of something else.\n");
}

std::string tomorrowText() {
    return base::tr(
               "## Plans\n"
               "* {firstNote}\n"
               "* 09:30 Call @maria about the trip #family/trips\n"
               "* Pack for the weekend #family/trips\n"
               "\t* Sleeping bags\n"
               "\t* [-] Umbrella\n") +
           "\n" +
           base::tr(
               "The first task is a copy too. Its original stands in the welcome note, which is no "
               "day's note; so no date leads back to it.\n");
}

std::string nextWeekText() {
    return base::tr(
        "* {lookBack} <{today}\n"
        "\t* What went well?\n"
        "\t* What can wait, and what can go?\n");
}

std::string filenameOf(const std::string& title) {
    const auto name = store::filenameFromTitle(title, store::StripListMarkers::no);
    return name.value_or("Welcome") + "." + std::string{store::noteExtension};
}

}  // namespace

std::vector<SampleNote> sampleNotes(const base::LocalTime& now, base::HourCycle cycle) {
    const Fillings filled = fillings(now, cycle);
    std::vector<SampleNote> notes;
    notes.push_back({base::NoteType::note, filenameOf(welcomeTitle()), welcomeText()});
    const struct {
        int days;
        std::string text;
    } days[] = {{-1, yesterdayText()}, {0, todayText()}, {1, tomorrowText()}, {7, nextWeekText()}};
    for (const auto& [offset, text] : days) {
        const base::Day day = base::addDays(now.day, offset);
        notes.push_back({base::NoteType::calendar, store::calendarFilename(day), text});
    }
    for (SampleNote& note : notes) {
        note.text = fmt::vformat(note.text, filled);
    }
    return notes;
}

}  // namespace tessaly::app
