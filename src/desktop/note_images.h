// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <QTimer>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "base/executor.h"
#include "base/failure.h"
#include "base/serial_queue.h"
#include "ports/file_system.h"

class QWidget;

namespace tessaly::desktop {

/// The pictures of the note that is open, by their names below the folder of images. Files are
/// looked at and decoded in the background, one at a time, and looked at again every two seconds
/// while the parent is in sight. Main thread.
class NoteImages : public QObject {
    Q_OBJECT
public:
    /// All of it outlives this object.
    struct Tools {
        ports::FileSystem& files;
        /// Any thread.
        std::function<base::Result<std::string>(const std::string& name)> pathOf;
        base::Executor& executor;
        std::function<void(base::Job)> post;  ///< to the main thread; any thread
    };
    NoteImages(Tools tools, QWidget* parent);
    /// Waits for the file in hand.
    ~NoteImages() override;

    /// What is known of a picture.
    struct Look {
        enum class State { awaited, shown, refused };
        State state = State::awaited;
        QSize size;       ///< upright, in pixels of the file; of one that is shown
        QString problem;  ///< of one that is refused, in words for the user

        bool operator==(const Look&) const = default;
    };
    /// A file that is asked for the first time is looked at from then on.
    const Look& look(const std::string& name);
    /// The picture in at least so many pixels where its file has them, else as it is there already;
    /// null: it is not. What is missing is decoded, and told by `pictureDecoded`.
    QImage picture(const std::string& name, QSize pixels);
    /// Another note is shown: forgets everything.
    void startOver();
    /// Whether files have changed, told by `lookChanged`.
    void lookAgain();

    static constexpr std::uint64_t mostBytes = 50ULL << 20;          ///< of a file
    static constexpr std::int64_t mostPixels = 100'000'000;          ///< of a file
    static constexpr qsizetype mostBytesKept = qsizetype(64) << 20;  ///< of decoded pictures

Q_SIGNALS:
    void lookChanged(const QString& name);
    void pictureDecoded();

private:
    struct Entry {
        Look look;
        ports::FileStamp stamp;
        QImage picture;
        QSize asked;  ///< that is being decoded
        std::uint64_t lastUse = 0;
    };
    struct Read;
    struct Shared;

    void read(const std::string& name, QSize pixels);
    void receive(const std::string& name, const Read& result);
    void dropUnused();

    const std::shared_ptr<Shared> _shared;
    base::SerialQueue _work;
    std::map<std::string, Entry> _entries;
    std::uint64_t _uses = 0;
    QTimer _again;
};

}  // namespace tessaly::desktop
