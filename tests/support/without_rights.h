// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <unistd.h>

#include <sys/stat.h>

#include "support/temp_folder.h"

namespace tessaly::tests {

/// Acts as a user without rights for as long as it lives, so that root too meets refusals.
class WithoutRights {
public:
    explicit WithoutRights(const TempFolder& folder) : _wasRoot(::geteuid() == 0) {
        ::chmod(folder.path().c_str(), 0755);
        _effective = !_wasRoot || ::seteuid(65534) == 0;
    }
    ~WithoutRights() {
        if (_wasRoot && ::seteuid(0) != 0) {
            std::abort();
        }
    }
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;

    bool effective() const { return _effective; }

private:
    bool _wasRoot;
    bool _effective = false;
};

}  // namespace tessaly::tests
