// SPDX-License-Identifier: MIT
// The gallery in this process (its forms, its timed job) and as the
// program a user runs (load, save, screenshot, exit status).
#include "apps/gallery/GalleryWindow.h"

#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"
#include "tests/qt/RunProgram.h"

#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QPointer>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "apps/gallery/CommandPage.h"
#include "apps/gallery/DatePage.h"
#include "apps/gallery/EffectsPage.h"
#include "host/FormFile.h"
#include "library/ClassFactory.h"

namespace kelvarin::gallery {
namespace {

using qt::ProgressBoxWidget;

ProgressBoxWidget* Bar(const GalleryWindow& w, const char* name) {
    return qobject_cast<ProgressBoxWidget*>(w.control(QString::fromLatin1(name)));
}

TEST(GalleryTest, SavesItsBarsAndTakesTheirPropertiesBackFromAForm) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("gallery.json"));
    GalleryWindow window;
    window.show();
    QApplication::processEvents();
    ProgressBoxWidget* linear = Bar(window, "linear");
    ASSERT_NE(linear, nullptr);
    EXPECT_EQ(linear->Value(), 72);
    ASSERT_TRUE(window.saveForm(path).isEmpty());

    linear->SetValue(5);
    Bar(window, "playground")->SetText(QStringLiteral("changed"));
    QPointer<ProgressBoxWidget> own(linear);
    ASSERT_TRUE(window.loadForm(path).isEmpty());
    // Each of the window's own controls gave way to one loaded from the file.
    EXPECT_TRUE(own.isNull());
    EXPECT_EQ(window.controls().size(), 35);  // 9 bars, 9 date fields, 17 buttons
    EXPECT_EQ(Bar(window, "linear")->Value(), 72);
    EXPECT_EQ(Bar(window, "playground")->Text(), QStringLiteral("Progress"));
    // The window follows the loaded bars: the playground's controls write to
    // the new one, and the job runs on it.
    EXPECT_EQ(window.jobBar(), Bar(window, "job"));

    // The file keeps each bar's place in the window.
    const host::Form form =
        host::LoadFormFile(path.toStdString(), [](std::string_view) { return true; });
    ASSERT_EQ(form.controls.size(), 35u);
    for (const host::FormControl& entry : form.controls) {
        const qt::ControlWidget* w = window.control(QString::fromStdString(entry.name));
        ASSERT_NE(w, nullptr) << entry.name;
        EXPECT_EQ(QPoint(entry.left, entry.top), w->mapTo(&window, QPoint(0, 0))) << entry.name;
        EXPECT_EQ(QSize(entry.width, entry.height), w->size()) << entry.name;
    }
}

TEST(GalleryTest, TheDatePageReadsOutTheBoxTypedIntoAndKeepsItsControlsInStep) {
    GalleryWindow window;
    QSignalSpy status(&window, &GalleryWindow::status);
    ASSERT_TRUE(window.showPage(QStringLiteral("DateBox")));
    window.show();
    QApplication::setActiveWindow(&window);
    QApplication::processEvents();
    EXPECT_TRUE(status.isEmpty())
        << status.at(0).at(0).toString().toStdString();  // no control complained

    auto* empty = qobject_cast<qt::DateBoxWidget*>(window.control(QStringLiteral("nullable")));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->ValueDB().metaType().id(), QMetaType::Nullptr);
    empty->setFocus(Qt::TabFocusReason);
    for (Qt::Key k :
         {Qt::Key_0, Qt::Key_9, Qt::Key_0, Qt::Key_3, Qt::Key_2, Qt::Key_0, Qt::Key_0, Qt::Key_7})
        QTest::keyClick(empty, k);
    EXPECT_EQ(empty->displayText(), QStringLiteral("09/03/2007"));
    DatePage* page = window.datePage();
    EXPECT_EQ(page->watched(), empty);
    const QString readout = page->readout();
    EXPECT_TRUE(readout.contains(QStringLiteral("nullable"))) << readout.toStdString();
    EXPECT_TRUE(readout.contains(QStringLiteral("9 Mar 2007"))) << readout.toStdString();

    // The playground's box: a pattern written to it comes back to the combo
    // box; one it refuses leaves both as they were.
    auto* play = qobject_cast<qt::DateBoxWidget*>(window.control(QStringLiteral("datePlayground")));
    ASSERT_NE(play, nullptr);
    auto* pattern = page->findChild<QComboBox*>();
    ASSERT_NE(pattern, nullptr);
    play->SetDateFormat(QStringLiteral("mm/yyyy"));
    EXPECT_EQ(pattern->currentText(), QStringLiteral("mm/yyyy"));
    EXPECT_EQ(play->Value().date().day(), 1);
}

// Alt+S from anywhere on the page clicks Salva, and the readout says so; a
// loaded form's buttons take the place of the page's own, which follows them.
TEST(GalleryTest, TheCommandPageReadsOutEventsAndFollowsLoadedButtons) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("gallery.json"));
    GalleryWindow window;
    ASSERT_TRUE(window.showPage(QStringLiteral("CommandBox")));
    window.show();
    QApplication::setActiveWindow(&window);
    QTest::keyClick(&window, Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(window.commandPage()->readout().endsWith(QStringLiteral("Salva\n   Click()")))
        << window.commandPage()->readout().toStdString();

    ASSERT_TRUE(window.saveForm(path).isEmpty());
    ASSERT_TRUE(window.loadForm(path).isEmpty());
    EXPECT_EQ(window.commandPage()->playButton(),
              qobject_cast<qt::CommandBoxWidget*>(window.control(QStringLiteral("cmdPlayground"))));
    EXPECT_TRUE(window.control(QStringLiteral("cmdDefault"))->displayAsDefault());
}

// ---- The program -------------------------------------------------------------------------------

test::ProgramRun Gallery(const QStringList& args) {
    return test::RunProgram(QStringLiteral(KELVARIN_GALLERY_PATH), args);
}

TEST(GalleryTest, TheProgramSavesLoadsAndTakesAScreenshot) {
    QTemporaryDir dir;
    const QString first = dir.filePath(QStringLiteral("first.json"));
    const QString second = dir.filePath(QStringLiteral("second.json"));
    const QString picture = dir.filePath(QStringLiteral("gallery.png"));

    const test::ProgramRun saved =
        Gallery({QStringLiteral("--save"), first, QStringLiteral("--screenshot"), picture});
    ASSERT_EQ(saved.exitCode, 0) << saved.err.toStdString();
    EXPECT_TRUE(saved.out.contains(picture));

    const QImage image(picture);
    ASSERT_FALSE(image.isNull());
    EXPECT_GE(image.width(), 800);
    EXPECT_GE(image.height(), 500);
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3) colours.insert(image.pixel(x, y));
    EXPECT_GT(colours.size(), 200);  // gradients, text, cards: not a blank window

    // A saved form loads: a fresh window writes no date limit, a loaded date
    // field lowers its default upper limit (31/12/9999 to 31/12/9980) and
    // writes it. That the next save keeps it is datebox_persist's.
    const test::ProgramRun again =
        Gallery({QStringLiteral("--form"), first, QStringLiteral("--save"), second});
    ASSERT_EQ(again.exitCode, 0) << again.err.toStdString();
    QFile loaded(second);
    ASSERT_TRUE(loaded.open(QIODevice::ReadOnly));
    EXPECT_EQ(loaded.readAll().count("\"9980-12-31T00:00:00\""), 8);  // but the limited one

    const test::ProgramRun missing =
        Gallery({QStringLiteral("--form"), dir.filePath(QStringLiteral("none.json")),
                 QStringLiteral("--save"), second});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("none.json"))) << missing.err.toStdString();

    EXPECT_EQ(Gallery({QStringLiteral("surplus")}).exitCode, 2);
}

// The effects play while their page is shown, the same frames for the
// same seed, and the pointer drops water where it presses.
TEST(GalleryTest, TheEffectsPagePlaysItsSeedAndTakesThePointer) {
    GalleryWindow window;
    window.show();
    ASSERT_TRUE(window.showPage(QStringLiteral("Effects")));
    EffectsPage* page = window.effectsPage();
    QTRY_VERIFY(page->frames() > 3);
    ASSERT_TRUE(window.showPage(QStringLiteral("DateBox")));  // stops the timer

    const auto play = [page](int seed) {
        page->setSeed(seed);
        QList<QImage> frames;
        for (int i = 0; i < 30; ++i) page->step();
        for (auto kind : {EffectView::Particles, EffectView::Rain, EffectView::Fire})
            frames << page->view(kind)->frame();
        return frames;
    };
    EXPECT_EQ(play(5), play(5));
    EXPECT_NE(play(5), play(6));
    EXPECT_TRUE(page->readout().contains(QStringLiteral("ms a step")))
        << page->readout().toStdString();

    EffectView* water = page->view(EffectView::Water);
    page->setSeed(5);
    const QImage calm = water->frame();
    QTest::mousePress(water, Qt::LeftButton, {}, water->rect().center());
    page->step();
    QTest::mouseRelease(water, Qt::LeftButton, {}, water->rect().center());
    for (int i = 0; i < 5; ++i) page->step();
    EXPECT_NE(water->frame(), calm);
}

}  // namespace
}  // namespace kelvarin::gallery
