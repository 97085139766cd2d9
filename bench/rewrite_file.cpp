// SPDX-License-Identifier: MIT
// rewrite_file FILE LINE KEEP SYNCS rename|exchange: adds a line to a file with the writes that
// `tessaly add` makes, and does nothing else. What KEEP/texts/text and KEEP/index got the last time
// is put on the disk; the new text goes there, and once more to a temporary file beside FILE, which
// takes its place: by rename, or by exchange, after which what came out is compared with what was
// read and removed. SYNCS is the number of times that something is put on the disk; of these two
// are for the new file and its folder. It is linked with all libraries that tessaly is linked with,
// so that loading takes as long.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include <sys/stat.h>

namespace {

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "rewrite_file: %s: %s\n", what.c_str(), std::strerror(errno));
    std::exit(1);
}

int openOrFail(const std::string& path, int flags) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC, 0600);
    return fd < 0 ? (fail(path), -1) : fd;
}

std::string readFile(const std::string& path) {
    const int fd = openOrFail(path, O_RDONLY);
    struct stat status;
    ::fstat(fd, &status);
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    if (::read(fd, bytes.data(), bytes.size()) != status.st_size) {
        fail(path);
    }
    ::close(fd);
    return bytes;
}

enum class Sync { no, yes };

void writeFile(const std::string& path, int flags, std::string_view bytes, Sync sync) {
    const int fd = openOrFail(path, O_WRONLY | O_CREAT | flags);
    if (::write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()) ||
        (sync == Sync::yes && ::fsync(fd) != 0)) {
        fail(path);
    }
    ::close(fd);
}

void syncPath(const std::string& path) {
    const int fd = openOrFail(path, O_RDONLY);
    if (::fsync(fd) != 0) {
        fail(path);
    }
    ::close(fd);
}

void keep(const std::string& folder, std::string_view bytes, int syncs) {
    const std::string texts = folder + "/texts";
    const std::string text = texts + "/text";
    const std::string index = folder + "/index";
    const std::string* const places[] = {&text, &texts, &index, &folder};
    for (int done = 0; done < syncs; ++done) {
        syncPath(*places[done % 4]);
    }
    writeFile(text + ".new", O_TRUNC, bytes, Sync::no);
    if (::rename((text + ".new").c_str(), text.c_str()) != 0) {
        fail(text);
    }
    writeFile(index, O_APPEND, std::string(150, 'x') + "\n", Sync::no);
}

void exchange(const std::string& path, const std::string& temporary, std::string_view read) {
    if (::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) != 0 ||
        readFile(temporary) != read || ::unlink(temporary.c_str()) != 0) {
        fail(path);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 6) {
        std::fputs("usage: rewrite_file FILE LINE KEEP SYNCS rename|exchange\n", stderr);
        return 2;
    }
    const std::string path = argv[1];
    const std::string temporary = path + ".new";
    const std::string old = readFile(path);
    const std::string text = old + argv[2] + "\n";
    keep(argv[3], text, std::atoi(argv[4]) - 2);
    writeFile(temporary, O_EXCL, text, Sync::yes);
    if (std::string_view(argv[5]) == "exchange") {
        exchange(path, temporary, old);
    } else if (::rename(temporary.c_str(), path.c_str()) != 0) {
        fail(path);
    }
    syncPath(path.substr(0, path.rfind('/')));
}
