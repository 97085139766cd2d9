// SPDX-License-Identifier: MIT
#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <cmath>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/image_file.h"
#include "desktop/note_images.h"
#include "desktop/note_layout.h"
#include "desktop/note_pane.h"
#include "desktop/qt_text.h"
#include "desktop/window_fixture.h"
#include "desktop/window_links.h"

namespace {

using namespace std::literals;
using namespace tessaly::desktop;
using tessaly::tests::until;
using tessaly::tests::WindowFixture;

std::string pngOf(int width, int height, const QColor& color = Qt::red) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

/// The head of a picture whose pixels would take more memory than there is to be had.
std::string headOfHugePicture() {
    std::string head = pngOf(1, 1);
    // 20,000 both ways, with what follows up to the sum over it.
    constexpr std::string_view sizes =
        "\x00\x00\x4e\x20\x00\x00\x4e\x20\x08\x02\x00\x00\x00\x6c\x12\xd1\x6e"sv;
    head.replace(16, sizes.size(), sizes);
    return head;
}

/// A note on Tuesday, in whose first line the caret stands.
struct PictureFixture : WindowFixture {
    explicit PictureFixture(std::string_view text) {
        write(today, text);
        std::filesystem::create_directories(home() / "planner/Images");
        write("Images/wide.png", pngOf(4000, 400));
        write("Images/small.png", pngOf(60, 40));
        write("Images/broken.png", pngOf(60, 40).substr(0, 60));
        write("Images/text.png", "no picture");
        write("Images/huge.png", headOfHugePicture());
        write("Images/long.png", "");
        std::filesystem::resize_file(home() / "planner/Images/long.png", NoteImages::mostBytes + 1);
        home().write("outside.png", pngOf(9, 9));
        std::filesystem::create_symlink(home() / "outside.png",
                                        home() / "planner/Images/outside.png");
        start();
        focusEditor();
        editor().goToLine(0);
    }
    NoteLayout& layout() {
        return static_cast<NoteLayout&>(*editor().document()->documentLayout());
    }
    const BlockLook& look(int line) {
        const QTextBlock block = editor().document()->findBlockByNumber(line);
        (void)layout().blockBoundingRect(block);
        return *BlockLook::of(block);
    }
    qreal height(int line) {
        return layout().blockBoundingRect(editor().document()->findBlockByNumber(line)).height();
    }
    /// The one picture of a line, once it is known.
    BlockPicture picture(int line) {
        CAPTURE(line);
        REQUIRE(until([&] { return look(line).pictures.size() == 1; }));
        return look(line).pictures.front();
    }
    QColor colorAt(QPointF place) {
        return editor().viewport()->grab().toImage().pixelColor(
            (place - QPointF(0, editor().verticalScrollBar()->value())).toPoint());
    }
    QPointF middleOf(int line) {
        return layout().blockBoundingRect(editor().document()->findBlockByNumber(line)).center();
    }
};

}  // namespace

TEST_CASE("a picture stands below its line, as large as there is room") {
    PictureFixture fixture(
        "first\n![wide](wide.png)\nsee ![small](../Images/small.png) here\nlast");
    const BlockPicture wide = fixture.picture(1);
    CHECK(wide.problem.isEmpty());
    CHECK(wide.place.width() <=
          fixture.layout().columnOf(fixture.editor().document()->firstBlock()).width());
    CHECK(wide.place.width() == doctest::Approx(10 * wide.place.height()).epsilon(0.02));
    const BlockPicture small = fixture.picture(2);
    CHECK(small.place.size() == QSizeF(60, 40));
    // One that fills its line stands in the place of the text, until the caret comes.
    const qreal quiet = fixture.height(1);
    CHECK(quiet < wide.place.height() + 20);
    CHECK(fixture.height(2) > 40 + 20);
    fixture.editor().goToLine(1);
    CHECK(fixture.height(1) > quiet + 15);
    fixture.editor().goToLine(3);
    CHECK(fixture.height(1) == quiet);
    CHECK(until([&] { return fixture.colorAt(fixture.middleOf(1)) == QColor(Qt::red); }));
    CHECK(fixture.shown().find("![wide](wide.png)") != std::string::npos);
    CHECK_FALSE(fixture.editor().canUndo());
}

TEST_CASE("a picture takes a part of the view's height alone") {
    PictureFixture fixture("first\n![x](tall.png)");
    fixture.write("Images/tall.png", pngOf(300, 3000));
    const BlockPicture tall = fixture.picture(1);
    REQUIRE(until([&] { return fixture.picture(1).problem.isEmpty(); }));
    const auto most = 0.6 * fixture.editor().viewport()->height();
    CHECK(fixture.picture(1).place.height() <= most);
    const qreal before = fixture.picture(1).place.height();
    fixture.window().resize(fixture.window().width(), fixture.window().height() - 200);
    CHECK(until([&] { return fixture.picture(1).place.height() < before - 100; }));
}

TEST_CASE("in the place of what is no picture, words tell why") {
    PictureFixture fixture(
        "first\n![a](gone.png)\n![b](broken.png)\n![c](text.png)\n![d](drawing.svg)\n"
        "![e](https://example.org/x.png)\n![f](../../x.png)\n![g](outside.png)\n"
        "![h](huge.png)\n![i](long.png)");
    fixture.write("Images/drawing.svg",
                  "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    CHECK(fixture.picture(1).problem == QStringLiteral("“gone.png” is missing."));
    // That one is broken is known once it is decoded, which it is when it is drawn.
    for (const int line : {2, 3, 4, 7}) {
        CAPTURE(line);
        CHECK(until([&] {
            fixture.editor().grab();
            return fixture.picture(line).problem.endsWith(QStringLiteral("cannot be shown."));
        }));
    }
    for (const int line : {8, 9}) {
        CAPTURE(line);
        CHECK(until([&] {
            return fixture.picture(line).problem.endsWith(QStringLiteral("too large to be shown."));
        }));
    }
    for (const int line : {5, 6}) {
        CHECK(fixture.look(line).pictures.empty());
        CHECK(fixture.height(line) < 40);
    }
}

TEST_CASE("a picture that comes or changes later is shown") {
    PictureFixture fixture("first\n![x](late.png)\nlast");
    CHECK_FALSE(fixture.picture(1).problem.isEmpty());
    auto& images = fixture.view<NoteImages>();
    fixture.write("Images/late.png", pngOf(50, 30));
    images.lookAgain();
    CHECK(until([&] { return fixture.picture(1).place.size() == QSizeF(50, 30); }));
    fixture.write("Images/late.png", pngOf(50, 70, Qt::blue));
    // Without being told to: it looks by itself.
    CHECK(until([&] { return fixture.picture(1).place.size() == QSizeF(50, 70); }));
    fixture.remove("Images/late.png");
    images.lookAgain();
    CHECK(until([&] { return !fixture.picture(1).problem.isEmpty(); }));
}

TEST_CASE("what is in sight stays while pictures above grow") {
    std::string text = "first\n![x](small.png)\n";
    for (int i = 0; i < 200; ++i) {
        text += "line\n";
    }
    PictureFixture fixture(text);
    (void)fixture.picture(1);
    fixture.editor().goToLine(150);
    fixture.editor().grab();
    const auto top = [&] { return fixture.editor().cursorRect().top(); };
    const int before = top();
    QSignalSpy changed(&fixture.view<NoteImages>(), &NoteImages::lookChanged);
    fixture.write("Images/small.png", pngOf(60, 300));
    fixture.view<NoteImages>().lookAgain();
    REQUIRE(until([&] { return !changed.empty(); }));
    CHECK(top() == before);
    fixture.editor().verticalScrollBar()->setValue(0);
    fixture.editor().grab();
    CHECK(fixture.height(1) > 300);
}

TEST_CASE("a click on a picture puts the caret, a double click opens the file") {
    PictureFixture fixture("first\n![x](small.png)\nlast");
    (void)fixture.picture(1);
    std::vector<std::string> opened;
    fixture.view<WindowLinks>().setOpenAddress([&](const QUrl& address) {
        opened.push_back(utf8(address.toString()));
        return true;
    });
    QWidget& view = *fixture.editor().viewport();
    const auto place = [&] {
        const QRectF column =
            fixture.layout().columnOf(fixture.editor().document()->findBlockByNumber(1));
        return QPoint(
            static_cast<int>(column.left()) + 30,
            static_cast<int>(column.bottom()) - 20 - fixture.editor().verticalScrollBar()->value());
    };
    QTest::mouseClick(&view, Qt::LeftButton, {}, place());
    CHECK(opened.empty());
    CHECK(fixture.editor().textCursor().blockNumber() == 1);
    QTest::mouseDClick(&view, Qt::LeftButton, {}, place());
    REQUIRE(opened.size() == 1);
    CHECK(opened.front().ends_with("/planner/Images/small.png"));
    fixture.press("Ctrl+Shift+O");
    CHECK(opened.size() == 2);
}

TEST_CASE("the way up of a photograph, and its size, are those of its file") {
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    REQUIRE(writer.write(image));
    const std::string file = bytes.toStdString();
    const ImageFile turned(file);
    CHECK(turned.size() == QSize(20, 40));
    CHECK(turned.decode({10, 20}).size() == QSize(10, 20));
    CHECK(turned.decode({100, 200}).size() == QSize(20, 40));
    CHECK(ImageFile("GIF89a").size().isEmpty());
    CHECK(ImageFile("").decode({1, 1}).isNull());
    CHECK(ImageFile::isNamedLikePicture("a.PNG"));
    CHECK_FALSE(ImageFile::isNamedLikePicture("a.png.desktop"));
    CHECK_FALSE(ImageFile::isNamedLikePicture("png"));
}
