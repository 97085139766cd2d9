// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include "desktop/document_edits.h"

namespace tessaly::desktop {

/// What takes changes back that were made in `before`; to be made in the text after them.
DocumentChanges inverseOf(const DocumentChanges& changes, const QString& before);

/// Of two texts put in at the same place, whose comes first.
enum class InsertOrder { ownFirst, othersFirst };
/// Changes of a text as they are to be made in it once others' changes of it have been made: what
/// they put in stays, and what both take out is out once. With the orders of the two turned round,
/// both ways lead to the same text.
DocumentChanges rebased(const DocumentChanges& own, const DocumentChanges& others,
                        InsertOrder order);

}  // namespace tessaly::desktop
