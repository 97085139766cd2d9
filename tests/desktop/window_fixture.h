// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemView>
#include <QString>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/main_window.h"
#include "desktop/note_editor.h"
#include "host/program_host.h"
#include "platform/json_user_defaults.h"
#include "support/environment.h"
#include "support/log_capture.h"
#include "support/temp_folder.h"

class QAbstractButton;

namespace tessaly::tests {

/// Lets the program run until the condition holds; false: it did not within a generous time.
bool until(const std::function<bool()>& isTrue);

/// A user's files in a temporary home, and the window over them with all that is below it in the
/// real program. The user sits before it on Tuesday, 5 March 2019.
class WindowFixture {
public:
    static constexpr const char* today = "Calendar/20190305.txt";
    static constexpr const char* friday = "Calendar/20190308.txt";

    /// `notes` as `notesIn` reads them.
    explicit WindowFixture(std::string_view notes = {});
    ~WindowFixture();

    /// Shows the window, and waits until all notes are read and changes of others are noticed.
    void start();
    /// Ends the program, as by closing its window.
    void end();

    desktop::MainWindow& window() { return *_window; }
    const TempFolder& home() const { return _home; }
    /// What the program was to ask the user, by its title; `answer` is given to each.
    std::vector<std::string> asked;
    std::optional<std::size_t> answer;

    // The data folder, as others see it.
    void write(std::string_view filename, std::string_view text) const;
    void remove(std::string_view filename) const;
    /// "-" where there is no file.
    std::string textOf(std::string_view filename) const;
    /// `textOf`, once it is that, or after a generous time.
    std::string textOf(std::string_view filename, std::string_view awaited) const;

    // What the user sees.
    desktop::NoteEditor& editor();
    std::string shown() { return editor().text(); }
    /// `shown`, once it is that, or after a generous time.
    std::string shown(std::string_view awaited);
    /// Words in sight in a label or button, wherever in the window; nothing: none begin so.
    std::optional<std::string> wordsLike(std::string_view beginning);
    std::string title() const { return _window->windowTitle().toStdString(); }
    template <class View>
    View& view() {
        return *_window->findChild<View*>();
    }
    /// The row that holds these words, once there is one; invalid: none came.
    static QModelIndex row(const QAbstractItemView& view, std::string_view words);

    /// Whether no row holds these words, at last.
    static bool wordsGone(const QAbstractItemView& view, std::string_view words);

    // What the user does. Keys go to whoever has them.
    void type(std::string_view text);
    void press(const char* keys);
    /// The button of that name or text, once it is in sight; fails the test where it is not.
    void click(std::string_view button);
    void clickRow(QAbstractItemView& view, std::string_view words);
    /// The box of a task in a list of days, or among results.
    void tick(QAbstractItemView& view, std::string_view words);
    void openNote(std::string_view filename);
    void focusEditor();

private:
    QAbstractButton* button(std::string_view name);

    LogCapture _log;
    TempFolder _home;
    Environment _environment;
    std::unique_ptr<host::ProgramHost> _host;
    std::unique_ptr<platform::JsonUserDefaults> _stateStore;
    std::unique_ptr<desktop::MainWindow> _window;
};

}  // namespace tessaly::tests
