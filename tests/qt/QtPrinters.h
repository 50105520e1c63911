// Readable failure messages for Qt values in GoogleTest.
#pragma once

#include <ostream>

#include <QDateTime>
#include <QString>
#include <QVariant>

inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
inline void PrintTo(const QVariant& v, std::ostream* os) {
    *os << v.metaType().name() << '(' << v.toString().toStdString() << ')';
}
inline void PrintTo(const QDateTime& d, std::ostream* os) {
    *os << d.toString(Qt::ISODate).toStdString();
}
