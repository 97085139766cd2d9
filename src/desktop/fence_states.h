// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <cstddef>
#include <functional>
#include <vector>

#include "app/line_look.h"

class QTextDocument;

namespace tessaly::desktop {

/// Which blocks of a document lie within a fence of code. Looked up from the top, no further than
/// asked for.
class FenceStates {
public:
    /// The document outlives it. `onChanged` is told each block whose state is not what was said.
    FenceStates(const QTextDocument& document, std::function<void(int block)> onChanged);

    /// The document has `newCount` blocks now in the place of `oldCount` from `first` on.
    void replace(int first, int oldCount, int newCount);
    /// Before the block, which the document has.
    app::FenceState before(int block);

private:
    using State = app::FenceState;
    static std::size_t at(int block) { return static_cast<std::size_t>(block); }
    static State after(const QString& line, State before);
    void set(int block, State state);

    const QTextDocument& _document;
    const std::function<void(int block)> _onChanged;
    std::vector<State> _states;
    int _known = 0;  ///< so many of them are right
};

}  // namespace tessaly::desktop
