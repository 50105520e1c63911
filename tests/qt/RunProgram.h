// SPDX-License-Identifier: MIT
// Runs one of this build's programs to its end, for the tests of what a user
// runs. The program inherits this process's offscreen platform.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace kelvarin::test {

struct ProgramRun {
    int exitCode = -1;  // -1 when it did not end within a minute, -2 when it crashed
    QString out, err;
};

inline ProgramRun RunProgram(const QString& program, const QStringList& args,
                             const QString& workDir = {}) {
    QProcess process;
    process.setWorkingDirectory(workDir);
    process.start(program, args);
    ProgramRun run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

}  // namespace kelvarin::test
