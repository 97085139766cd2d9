// SPDX-License-Identifier: MIT
#include "platform/gio_trash.h"

#include <array>
#include <memory>

#include <fmt/format.h>
#include <gio/gio.h>

namespace tessaly::platform {

using base::Done;
using base::Failure;

namespace {

struct TrashRow {
    int error;
    Failure::Kind kind;
};

constexpr std::array<TrashRow, 4> trashRows{{
    {G_IO_ERROR_NOT_FOUND, Failure::Kind::notFound},
    {G_IO_ERROR_PERMISSION_DENIED, Failure::Kind::denied},
    {G_IO_ERROR_NOT_SUPPORTED, Failure::Kind::unavailable},
    {G_IO_ERROR_NO_SPACE, Failure::Kind::noSpace},
}};

Failure failureOf(const std::string& file, const GError* error) {
    const std::string message = error->message;
    const bool namesFile = message.find(file) != message.npos;
    Failure failure{Failure::Kind::other,
                    namesFile ? message : fmt::format("{}: {}", file, message)};
    for (const TrashRow& row : trashRows) {
        if (g_error_matches(error, G_IO_ERROR, row.error)) {
            failure.kind = row.kind;
        }
    }
    return failure;
}

base::Result<Done> trash(const std::string& file) {
    if (file.find('\0') != std::string::npos) {
        return Failure{Failure::Kind::malformed, file.c_str()};
    }
    // The local one by name: the default one may load modules that look for a session bus.
    const std::unique_ptr<GFile, void (*)(void*)> place(
        g_vfs_get_file_for_path(g_vfs_get_local(), file.c_str()), g_object_unref);
    GError* error = nullptr;
    if (g_file_trash(place.get(), nullptr, &error) != FALSE) {
        return Done{};
    }
    const std::unique_ptr<GError, void (*)(GError*)> owned(error, g_error_free);
    return failureOf(file, error);
}

}  // namespace

ports::Trash gioTrash() {
    return trash;
}

}  // namespace tessaly::platform
