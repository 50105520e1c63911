// SPDX-License-Identifier: MIT
// Readable failure messages for Qt values in GoogleTest, and the events a
// widget raised as text to compare.
#pragma once

#include <ostream>

#include <QDateTime>
#include <QSignalSpy>
#include <QString>
#include <QStringList>
#include <QVariant>

inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
inline void PrintTo(const QVariant& v, std::ostream* os) {
    *os << v.metaType().name() << '(' << v.toString().toStdString() << ')';
}
inline void PrintTo(const QDateTime& d, std::ostream* os) {
    *os << d.toString(Qt::ISODate).toStdString();
}

// The events a spy on ControlWidget::eventRaised saw since the last call,
// as "Name(arg, ...)".
inline QStringList Seen(QSignalSpy& events) {
    QStringList out;
    for (const QList<QVariant>& e : events) {
        QStringList args;
        for (const QVariant& a : e.at(2).toList()) args << a.toString();
        out << e.at(1).toString() + "(" + args.join(", ") + ")";
    }
    events.clear();
    return out;
}
