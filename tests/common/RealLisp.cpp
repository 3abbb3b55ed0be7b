#include "RealLisp.h"

#include <QProcess>
#include <QStandardPaths>

RealLispRun RunRealLisp(const QString& form, const QString& input) {
    RealLispRun run;
    const QString bound =
        QStringLiteral("(let ((*read-default-float-format* 'double-float)) %1)").arg(form);
    QString program = QStandardPaths::findExecutable(QStringLiteral("sbcl"));
    QStringList arguments{"--noinform", "--non-interactive", "--eval", bound};
    if (program.isEmpty()) {
        program = QStandardPaths::findExecutable(QStringLiteral("clisp"));
        arguments = {"-q", "-x", bound};
    }
    if (program.isEmpty()) {
        return run;
    }
    run.found = true;
    QProcess lisp;
    lisp.start(program, arguments);
    if (!lisp.waitForStarted()) {
        return run;
    }
    lisp.write(input.toUtf8() + '\n');
    lisp.closeWriteChannel();
    run.finished = lisp.waitForFinished(60000) && lisp.exitStatus() == QProcess::NormalExit;
    run.output = QString::fromUtf8(lisp.readAllStandardOutput()).simplified();
    return run;
}
