// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace tessaly::desktop {

/// A number typed before a key of a list, as in "3>": how often it is done.
class KeyCount {
public:
    /// False: what was typed is no part of a number.
    bool take(const QString& typed);
    /// The number, once; 1 where none was typed.
    int spend();
    void clear() { _count = 0; }

private:
    int _count = 0;  ///< 0: none
};

}  // namespace tessaly::desktop
