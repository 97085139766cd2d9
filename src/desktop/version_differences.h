// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>
#include <string_view>

namespace tessaly::desktop {

/// What one version of a note changes in another, line by line: what it lacks and what it adds,
/// with some lines around. Can be selected and copied, not edited.
class VersionDifferences : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit VersionDifferences(QWidget* parent = nullptr);

    /// Texts as `app::shownText`.
    void show(std::string_view current, std::string_view version);

private:
    void paintTheme();
};

}  // namespace tessaly::desktop
