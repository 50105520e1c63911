// SPDX-License-Identifier: MIT
// kelvarin-gallery [--page NAME] [--form FILE] [--save FILE] [--screenshot FILE.png]
//                  [--size WxH] [--dark] [--trace]:
// the controls at work in a real window. --page opens a page ("DateBox"),
// --form loads a form file into the gallery, --save writes the gallery's
// controls to one and --screenshot renders the window to a PNG; with
// either of those two the program exits when done (the offscreen platform
// will do). --size sets the window's size, --dark a dark palette (without
// it the gallery follows the system's), and --trace prints the controls'
// events, values and places (EventTrace.h).
#include <cstdio>
#include <cstring>
#include <memory>

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFont>
#include <QRegularExpression>
#include <QStyleFactory>

#include <kelvarin/Version.h>

#include <kelvarin/ProgressBoxWidget.h>
#include "apps/gallery/Cards.h"
#include "apps/gallery/EventTrace.h"
#include "apps/gallery/GalleryWindow.h"
#include "qt/QtPlatform.h"

namespace {

// Runs the job until the bar is well on and has reported its time, so the
// picture shows a run in progress; gives up after a few seconds.
void RunJobForPicture(kelvarin::gallery::GalleryWindow& window) {
    window.startJob(2400);
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 5000 &&
           (window.jobBar()->Percentual() < 62 || window.timerChanges() < 2))
        QApplication::processEvents(QEventLoop::AllEvents, 20);
}

// --help and --version answer without opening a window system.
bool OnlyAsksForText(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        for (const char* option : {"--help", "-h", "--help-all", "--version", "-v"})
            if (std::strcmp(argv[i], option) == 0) return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const std::unique_ptr<QCoreApplication> application =
        OnlyAsksForText(argc, argv) ? std::make_unique<QCoreApplication>(argc, argv)
                                    : std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kelvarin-gallery"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KELVARIN_VERSION_STRING));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The Kelvarin controls at work."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption form(QStringLiteral("form"), QStringLiteral("Load a form file."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption save(QStringLiteral("save"),
                                  QStringLiteral("Write the gallery's controls to a form file."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Render the window to a PNG file and exit."),
                                        QStringLiteral("FILE"));
    const QCommandLineOption page(QStringLiteral("page"),
                                  QStringLiteral("Open a page: ProgressBox, DateBox, Effects "
                                                 "or CommandBox."),
                                  QStringLiteral("NAME"));
    const QCommandLineOption size(QStringLiteral("size"),
                                  QStringLiteral("The window's size, as 1280x720."),
                                  QStringLiteral("WxH"));
    const QCommandLineOption dark(QStringLiteral("dark"),
                                  QStringLiteral("Use a dark palette, whatever the system's."));
    const QCommandLineOption trace(
        QStringLiteral("trace"),
        QStringLiteral("Print the controls' events, values and places to standard output."));
    parser.addOptions({page, form, save, screenshot, size, dark, trace});
    parser.process(*application);
    if (!parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "kelvarin-gallery: unexpected argument %s\n",
                     qPrintable(parser.positionalArguments().first()));
        return 2;
    }
    QSize windowSize;
    if (parser.isSet(size)) {
        const auto match =
            QRegularExpression(QStringLiteral("^(\\d{2,5})x(\\d{2,5})$")).match(parser.value(size));
        if (!match.hasMatch()) {
            std::fprintf(stderr, "kelvarin-gallery: --size wants WxH, as 1280x720, not %s\n",
                         qPrintable(parser.value(size)));
            return 2;
        }
        windowSize = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(9.5);
    QApplication::setFont(font);
    if (parser.isSet(dark)) QApplication::setPalette(kelvarin::gallery::DarkPalette());
    kelvarin::qt::ApplyPlatformSettings();  // the system colours of the palette in force

    kelvarin::gallery::GalleryWindow window;
    if (windowSize.isValid()) window.resize(windowSize);
    int status = 0;
    if (parser.isSet(form)) {
        const QString error = window.loadForm(parser.value(form));
        if (!error.isEmpty()) {
            std::fprintf(stderr, "kelvarin-gallery: %s\n", qPrintable(error));
            status = 1;
        }
    }
    if (parser.isSet(page) && !window.showPage(parser.value(page))) {
        std::fprintf(stderr, "kelvarin-gallery: no page %s\n", qPrintable(parser.value(page)));
        return 2;
    }
    if (parser.isSet(trace)) (new kelvarin::gallery::EventTrace(window, stdout))->start();
    window.show();
    QApplication::processEvents();  // laid out, so the saved geometry is the shown one
    if (parser.isSet(save)) {
        const QString error = window.saveForm(parser.value(save));
        if (!error.isEmpty()) {
            std::fprintf(stderr, "kelvarin-gallery: %s\n", qPrintable(error));
            return 1;
        }
    }
    if (parser.isSet(screenshot)) {
        RunJobForPicture(window);
        const QString path = parser.value(screenshot);
        if (!window.saveScreenshot(path)) {
            std::fprintf(stderr, "kelvarin-gallery: cannot write %s\n", qPrintable(path));
            return 1;
        }
        std::printf("kelvarin-gallery: screenshot written to %s\n", qPrintable(path));
    }
    // Saving or taking a picture is a batch run: it ends here.
    if (parser.isSet(save) || parser.isSet(screenshot)) return status;
    return QApplication::exec();
}
