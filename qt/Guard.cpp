// SPDX-License-Identifier: MIT
#include "qt/Guard.h"

#include <exception>

#include "common/HostError.h"

namespace kelvarin::qt {

Failure CurrentFailure() noexcept {
    try {
        throw;
    } catch (const HostError& e) {
        return {true, e.Number(), QString::fromUtf8(e.what())};
    } catch (const std::exception& e) {
        return {true, 0, QString::fromUtf8(e.what())};
    } catch (...) {
        return {true, 0, QStringLiteral("unknown failure")};
    }
}

void WarnFailure(const QString& who, const char* where, const Failure& failure) noexcept {
    qWarning("kelvarin: %s %s: error %d %s", qPrintable(who), where, failure.number,
             qPrintable(failure.text));
}

}  // namespace kelvarin::qt
