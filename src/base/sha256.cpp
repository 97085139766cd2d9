// SPDX-License-Identifier: MIT
#include "base/sha256.h"

#include <glib.h>
#include <memory>

namespace tessaly::base {

std::string sha256(std::string_view bytes) {
    const std::unique_ptr<char, void (*)(void*)> digits(
        g_compute_checksum_for_data(G_CHECKSUM_SHA256,
                                    reinterpret_cast<const guchar*>(bytes.data()), bytes.size()),
        g_free);
    return digits.get();
}

}  // namespace tessaly::base
