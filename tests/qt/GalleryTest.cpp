// SPDX-License-Identifier: MIT
// The gallery in this process (its forms, its timed job) and as the
// program a user runs (load, save, screenshot, exit status).
#include "apps/gallery/GalleryWindow.h"

#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"
#include "tests/qt/RunProgram.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QFile>
#include <QImage>
#include <QMap>
#include <QPointer>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "apps/gallery/Cards.h"
#include "apps/gallery/CommandPage.h"
#include "apps/gallery/DatePage.h"
#include "apps/gallery/EffectsPage.h"
#include "apps/gallery/EventTrace.h"
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

    DatePage* page = window.datePage();
    // Setting the boxes up raised events; the user has not done anything yet.
    EXPECT_FALSE(page->readout().contains(QStringLiteral("Last event")))
        << page->readout().toStdString();

    auto* empty = qobject_cast<qt::DateBoxWidget*>(window.control(QStringLiteral("nullable")));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->ValueDB().metaType().id(), QMetaType::Nullptr);
    empty->setFocus(Qt::TabFocusReason);
    QTest::keyClick(empty, Qt::Key_Delete);  // blanks what is blank: no value yet
    EXPECT_EQ(page->watched(), empty);
    EXPECT_TRUE(page->readout().contains(QStringLiteral("Value    empty")))
        << page->readout().toStdString();  // not the bare midnight of day 0
    EXPECT_TRUE(page->readout().contains(QStringLiteral("ValueDB  Null")));
    EXPECT_TRUE(page->readout().contains(QStringLiteral("Last event: KeyUp(46, 0)")))
        << page->readout().toStdString();
    for (Qt::Key k :
         {Qt::Key_0, Qt::Key_9, Qt::Key_0, Qt::Key_3, Qt::Key_2, Qt::Key_0, Qt::Key_0, Qt::Key_7})
        QTest::keyClick(empty, k);
    EXPECT_EQ(empty->displayText(), QStringLiteral("09/03/2007"));
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

// On a 1366 x 768 screen with a panel the window has about 1340 x 690 to
// itself: there every page fits its width (and scrolls its height), and no
// readout moves or widens anything when its text grows.
TEST(GalleryTest, FitsASmallScreenAndKeepsItsLayoutWhenReadoutsGrow) {
    GalleryWindow window;
    const QSize free = window.screen()->availableGeometry().size();
    EXPECT_EQ(window.size().boundedTo(free), window.size());  // as it opens
    window.resize(1340, 690);
    window.show();
    QApplication::processEvents();
    EXPECT_EQ(window.size(), QSize(1340, 690));  // its minimum is smaller

    // Where every widget of the window stands, the readouts included.
    const auto places = [&window] {
        QMap<const QWidget*, QRect> at;
        for (const QWidget* w : window.findChildren<QWidget*>())
            if (w->isVisible()) at[w] = {w->mapTo(&window, QPoint()), w->size()};
        return at;
    };
    const QList<Readout*> readouts = window.findChildren<Readout*>();
    ASSERT_GE(readouts.size(), 9);
    for (const char* name : {"ProgressBox", "DateBox", "Effects", "CommandBox"}) {
        ASSERT_TRUE(window.showPage(QString::fromLatin1(name)));
        QApplication::processEvents();
        QScrollArea* shown = nullptr;
        for (QScrollArea* s : window.findChildren<QScrollArea*>())
            if (s->isVisible()) shown = s;
        ASSERT_NE(shown, nullptr) << name;
        EXPECT_FALSE(shown->horizontalScrollBar()->isVisible()) << name;

        const QMap<const QWidget*, QRect> before = places();
        for (Readout* r : readouts)
            r->setText(QStringLiteral("Last event: MouseMove(1, 0, 1234.5, 678.9) ").repeated(12) +
                       QStringLiteral("\nand a line more").repeated(12));
        QApplication::processEvents();
        EXPECT_EQ(places(), before) << name;
        EXPECT_FALSE(shown->horizontalScrollBar()->isVisible()) << name;
    }
}

// The playgrounds' range and limit boxes act when the typing is done: typing
// 50 as the bar's maximum never makes it 5 on the way (which would have
// pulled the value down to 5).
TEST(GalleryTest, ThePlaygroundsTakeATypedRangeWhenTheTypingIsDone) {
    GalleryWindow window;
    window.show();
    QApplication::setActiveWindow(&window);
    ProgressBoxWidget* bar = Bar(window, "playground");
    bar->SetValue(30);
    auto* max = window.findChild<QDoubleSpinBox*>(QStringLiteral("rangeMax"));
    ASSERT_NE(max, nullptr);
    max->setFocus();
    max->selectAll();
    QTest::keyClicks(max, QStringLiteral("50"));
    EXPECT_EQ(bar->MaxValue(), 100);
    QTest::keyClick(max, Qt::Key_Return);
    EXPECT_EQ(bar->MaxValue(), 50);
    EXPECT_EQ(bar->Value(), 30);

    ASSERT_TRUE(window.showPage(QStringLiteral("DateBox")));
    auto* box = qobject_cast<qt::DateBoxWidget*>(window.control(QStringLiteral("datePlayground")));
    auto* min = window.findChild<QDateEdit*>(QStringLiteral("limitMin"));
    ASSERT_NE(box, nullptr);
    ASSERT_NE(min, nullptr);
    const QDateTime lowest = box->MinDate();
    min->setFocus();
    min->setSelectedSection(QDateTimeEdit::YearSection);
    QTest::keyClicks(min, QStringLiteral("2026"));
    EXPECT_EQ(box->MinDate(), lowest);
    QTest::keyClick(min, Qt::Key_Return);
    EXPECT_EQ(box->MinDate().date(), QDate(2026, 1, 1));
}

// Pausing the job stops the job, not the bar's clock: the bar reports on
// through the pause, and the time the job is done in is the bar's, so it is
// never less than the bar's last reported elapsed time.
TEST(GalleryTest, TheJobsDoneInCountsThePauseAsTheBarDoes) {
    GalleryWindow window;
    window.show();
    window.jobBar()->SetTimerChangedInterval(40);
    window.startJob(300);
    QTRY_VERIFY(window.timerChanges() >= 1);
    window.pauseJob();
    const int paused = window.timerChanges();
    QTRY_VERIFY(window.timerChanges() >= paused + 4);
    EXPECT_TRUE(window.jobReadout().startsWith(QStringLiteral("Paused")))
        << window.jobReadout().toStdString();
    window.resumeJob();
    QTRY_VERIFY_WITH_TIMEOUT(window.jobReadout().startsWith(QStringLiteral("Done in")), 10000);

    const auto match =
        QRegularExpression(
            QStringLiteral("^Done in ([0-9.]+) s, pauses included; last report at ([0-9.]+) s.$"))
            .match(window.jobReadout());
    ASSERT_TRUE(match.hasMatch()) << window.jobReadout().toStdString();
    const double done = match.captured(1).toDouble(), elapsed = match.captured(2).toDouble();
    EXPECT_GE(done, elapsed);
    EXPECT_GE(elapsed, 0.3 + 4 * 0.04 - 0.1);  // the job's own time and the pause
}

// --dark, or a dark palette of the system's: the cards, texts and date
// fields turn dark with it, and light again after.
TEST(GalleryTest, FollowsTheApplicationPaletteLightOrDark) {
    const QPalette light = QApplication::palette();
    GalleryWindow window;
    ASSERT_TRUE(window.showPage(QStringLiteral("DateBox")));
    window.resize(1280, 700);
    window.show();
    QApplication::processEvents();
    auto* box = window.control(QStringLiteral("nullable"));
    const auto lightness = [box] {
        const QImage image = box->grab().toImage();
        return image.pixelColor(image.width() / 2, image.height() / 2).lightness();
    };
    EXPECT_GT(lightness(), 200);

    QApplication::setPalette(DarkPalette());
    QApplication::processEvents();
    EXPECT_TRUE(window.styleSheet().contains(DarkPalette().color(QPalette::Window).name()));
    EXPECT_LT(lightness(), 60);

    QApplication::setPalette(light);
    QApplication::processEvents();
    EXPECT_FALSE(window.styleSheet().contains(DarkPalette().color(QPalette::Window).name()));
    EXPECT_GT(lightness(), 200);
}

// --trace's lines, as the X11 test reads them: where the page's controls
// and the tabs stand, then every event of a control and a date field's
// value after it.
TEST(GalleryTest, TheTraceTellsPlacesEventsAndValues) {
    std::FILE* out = std::tmpfile();
    ASSERT_NE(out, nullptr);
    GalleryWindow window;
    ASSERT_TRUE(window.showPage(QStringLiteral("DateBox")));
    window.show();
    QApplication::setActiveWindow(&window);
    QApplication::processEvents();
    auto* trace = new EventTrace(window, out);

    const QString layout = trace->layoutLines();
    const auto has = [&layout](const char* pattern) {
        return QRegularExpression(QString::fromLatin1(pattern), QRegularExpression::MultilineOption)
            .match(layout)
            .hasMatch();
    };
    EXPECT_TRUE(layout.startsWith(QStringLiteral("PAGE DateBox\n"))) << layout.toStdString();
    EXPECT_TRUE(has("^TAB CommandBox -?\\d+ -?\\d+ \\d+ \\d+$")) << layout.toStdString();
    EXPECT_TRUE(has("^AT nullable -?\\d+ -?\\d+ \\d+ \\d+$")) << layout.toStdString();
    EXPECT_TRUE(has("^FIELDS nullable 0 \\d+ \\d+ \\d+$")) << layout.toStdString();
    EXPECT_FALSE(has("^AT cmdSalva ")) << "not on the page in front";

    auto* box = qobject_cast<qt::DateBoxWidget*>(window.control(QStringLiteral("nullable")));
    ASSERT_NE(box, nullptr);
    box->setFocus(Qt::TabFocusReason);
    QTest::keyClick(box, Qt::Key_2);
    box->SetValue(QDateTime(QDate(2007, 12, 25), QTime(), Qt::UTC));
    std::rewind(out);
    QString printed;
    char line[512];
    while (std::fgets(line, sizeof line, out)) printed += QString::fromUtf8(line);
    delete trace;  // before its file goes
    std::fclose(out);
    EXPECT_TRUE(
        printed.contains(QStringLiteral("EVENT nullable KeyDown(50, 0)\n"
                                        "VALUE nullable \"2_/__/____\" empty Null\n")))
        << printed.toStdString();
    EXPECT_TRUE(
        printed.endsWith(QStringLiteral("EVENT nullable Change()\nVALUE nullable "
                                        "\"25/12/2007\" 2007-12-25 00:00:00 "
                                        "2007-12-25 00:00:00\n")))
        << printed.toStdString();
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
        Gallery({QStringLiteral("--save"), first, QStringLiteral("--screenshot"), picture,
                 QStringLiteral("--size"), QStringLiteral("1280x700")});
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
    EXPECT_EQ(Gallery({QStringLiteral("--size"), QStringLiteral("1280")}).exitCode, 2);

    const test::ProgramRun dark =
        Gallery({QStringLiteral("--dark"), QStringLiteral("--size"), QStringLiteral("900x600"),
                 QStringLiteral("--screenshot"), picture});
    ASSERT_EQ(dark.exitCode, 0) << dark.err.toStdString();
    const QImage darkImage(picture);
    EXPECT_EQ(darkImage.size(), QSize(900, 600));
    EXPECT_LT(darkImage.pixelColor(4, 4).lightness(), 60);
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
