// SPDX-License-Identifier: MIT
#include "platform/replace_file.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

#include "platform/errno_failure.h"
#include "platform/file_attributes.h"
#include "platform/file_bytes.h"
#include "platform/file_failures.h"
#include "platform/still_file.h"
#include "platform/temporary_file.h"

namespace tessaly::platform {

using base::Done;

namespace {

/// Each needs another program that puts a file there within microseconds.
constexpr int maxExchangesBack = 10;

/// The files of one replacement, under `name` and under the temporary name.
class Replacement {
public:
    Replacement(FolderName name, const std::string& path, const ports::FileContents& read,
                std::string_view bytes, const ChangeNames& exchange)
        : _name(name),
          _path(path),
          _read(read),
          _bytes(bytes),
          _exchange(exchange),
          _old(name, Links::themselves, path),
          _fresh(name.folder, name.name, 0600) {}

    base::Result<Done> run();

private:
    int writeFresh();
    base::Result<Done> checkOld(FolderName where) const;
    base::Result<Done> renameOver();
    base::Result<Done> settleExchange();
    base::Result<Done> checkWhatCameOut() const;
    void takeBack();
    bool exchangeBack();
    bool isFreshUntouched() const;

    FolderName _name;
    const std::string& _path;
    const ports::FileContents& _read;
    std::string_view _bytes;
    const ChangeNames& _exchange;
    StillFile _old;
    TemporaryFile _fresh;
};

int Replacement::writeFresh() {
    int error = _fresh.error();
    error = error != 0 ? error : copyAttributes(_old.fd(), _old.status(), _fresh.fd());
    error = error != 0 ? error : writeAll(_fresh.fd(), _bytes);
    error = error != 0 ? error : syncBytes(_fresh.fd());
    _fresh.close();
    return error;
}

base::Result<Done> Replacement::checkOld(FolderName where) const {
    return _old.check(where, [this](int fd) { return holdsBytes(fd, _read.bytes); });
}

base::Result<Done> Replacement::run() {
    if (!_old.opened()) {
        return _old.opened();
    }
    if (_old.status().st_ino != _read.stamp.inode) {
        return changedFailure(_path);
    }
    if (const int error = writeFresh(); error != 0) {
        return errnoFailure(error, _path);
    }
    if (auto held = _old.hold(); !held) {
        return held;
    }
    if (auto still = checkOld(_name); !still) {
        return still;
    }
    const int error = _exchange(_fresh.name(), _name);
    if (isUnsupported(error)) {
        return renameOver();
    }
    return error == 0 ? settleExchange() : errnoFailure(error, _path);
}

base::Result<Done> Replacement::renameOver() {
    if (auto still = checkOld(_name); !still) {
        return still;
    }
    const int error = giveName(_fresh.name(), _name);
    if (error == 0) {
        syncFolder(_name.folder);
    }
    return resultOf(error, _path);
}

base::Result<Done> Replacement::settleExchange() {
    auto still = checkWhatCameOut();
    if (still && ::unlinkat(_name.folder, _fresh.name().name, 0) != 0) {
        // Nobody would know that there is something left to be settled.
        still = errnoFailure(errno, _path);
    }
    // Others may clear such names away. Then the new text stands; to say that it does not would
    // have the change made twice.
    if (still || isGone(_fresh.name())) {
        return Done{};
    }
    takeBack();
    return still;
}

/// Looked at before the disk is waited for too, so that a foreign file is back at once.
base::Result<Done> Replacement::checkWhatCameOut() const {
    if (auto still = checkOld(_fresh.name()); !still) {
        return still;
    }
    syncFolder(_name.folder);
    return checkOld(_fresh.name());
}

/// Our own file goes only if nobody has written it while it stood under the name. What else is left
/// under the temporary name holds words of others.
void Replacement::takeBack() {
    _fresh.keep();
    const bool oursCameOut = exchangeBack();
    _old.release();
    syncFolder(_name.folder);
    if (oursCameOut && isFreshUntouched()) {
        ::unlinkat(_name.folder, _fresh.name().name, 0);
    }
}

/// Puts back what came out. When something newer comes out in its turn, that goes back, until what
/// comes out is what was put there. True: in the end our own file did.
bool Replacement::exchangeBack() {
    const FolderName aside = _fresh.name();
    std::optional<FileIdentity> put = _fresh.identity();
    for (int i = 0; i < maxExchangesBack; ++i) {
        const auto out = identityAt(aside);
        const int error = _exchange(aside, _name);
        if (error == 0 && identityAt(aside) == put) {
            return put == _fresh.identity();
        }
        if (error == 0) {
            put = out;
        } else if (error != ENOENT || giveFreeName(aside, _name) == 0) {
            return false;
        }
    }
    return false;
}

bool Replacement::isFreshUntouched() const {
    StillFile fresh(_fresh.name(), Links::themselves, _path);
    return fresh.opened() && fresh.hold() &&
           fresh.check(_fresh.name(), [this](int fd) { return holdsBytes(fd, _bytes); });
}

using RealPath = std::unique_ptr<char, void (*)(void*)>;

}  // namespace

base::Result<Done> replaceIfStill(const std::string& file, const ports::FileContents& read,
                                  std::string_view bytes, const ChangeNames& exchange) {
    const RealPath real(::realpath(file.c_str(), nullptr), std::free);
    // A file that forbids writing is to be left alone, though the folder would let us replace it.
    if (!real || ::faccessat(AT_FDCWD, real.get(), W_OK, AT_EACCESS) != 0) {
        return errnoFailure(errno, file);
    }
    const Place place = placeOf(real.get());
    const FileDescriptor folder = openFolder(place.folder);
    if (!folder) {
        return errnoFailure(errno, file);
    }
    return Replacement({folder.get(), place.name.c_str()}, file, read, bytes, exchange).run();
}

}  // namespace tessaly::platform
