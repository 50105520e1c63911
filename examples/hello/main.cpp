// SPDX-License-Identifier: MIT
// A window with a date field, a progress bar and a button that moves the
// bar on, using Kelvarin's widgets as an application does. With --once it
// prints what the widgets show and exits as soon as the window is up (the
// offscreen platform will do).
#include <cstdio>
#include <cstring>

#include <QApplication>
#include <QDateTime>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/Platform.h>
#include <kelvarin/ProgressBoxWidget.h>
#include <kelvarin/Version.h>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    kelvarin::qt::ApplyPlatformSettings();  // system colours and the locale from Qt

    QWidget window;
    window.setWindowTitle(QStringLiteral("Kelvarin %1").arg(kelvarin::Version()));
    auto* layout = new QVBoxLayout(&window);

    auto* date = new kelvarin::qt::DateBoxWidget(&window);
    date->SetDateFormat(QStringLiteral("dd/mm/yyyy"));
    date->SetValue(QDateTime(QDate(2026, 3, 14), QTime(0, 0), Qt::UTC));
    layout->addWidget(date);

    auto* bar = new kelvarin::qt::ProgressBoxWidget(&window);
    bar->SetText(QStringLiteral("Copia"));
    bar->SetValue(40);
    layout->addWidget(bar);

    auto* next = new kelvarin::qt::CommandBoxWidget(&window);
    next->SetText(QStringLiteral("&Avanti"));
    QObject::connect(next, &kelvarin::qt::CommandBoxWidget::Click, bar,
                     [bar] { bar->SetValue(bar->Value() >= 100 ? 0 : bar->Value() + 10); });
    layout->addWidget(next);

    window.show();
    if (argc > 1 && std::strcmp(argv[1], "--once") == 0) {
        QTimer::singleShot(0, &app, [&] {
            std::printf("Kelvarin %s: date %s, bar \"%s\", button \"%s\"\n", kelvarin::Version(),
                        qPrintable(date->displayText()), qPrintable(bar->caption()),
                        qPrintable(next->Text()));
            QApplication::quit();
        });
    }
    return QApplication::exec();
}
