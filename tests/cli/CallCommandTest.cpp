#include "PlcdbProcess.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

PlcdbRun Call(const QStringList& args, const QByteArray& input = {}) {
    return RunPlcdb(QStringList{QStringLiteral("call")} + args, input);
}

}  // namespace

TEST(CallCommand, CallsPrintTheirAnswersAsLispText) {
    PlcdbRun delay = Call({QStringLiteral("(zel_delay 1)")});
    EXPECT_EQ(delay.status, 0) << qPrintable(delay.err);
    EXPECT_EQ(delay.out, QString());

    // An integer where the style text belongs: nil, and no dialog.
    PlcdbRun badStyle =
        Call({QStringLiteral("(zel_mbsel '(0 \"\" nil 5 \"V\" 1.0 nil \"\" nil))")});
    EXPECT_EQ(badStyle.status, 0) << qPrintable(badStyle.err);
    EXPECT_EQ(badStyle.out, QStringLiteral("nil\n"));
    EXPECT_EQ(badStyle.err, QString());

    PlcdbRun tooShort = Call({QStringLiteral("(zel_mbsel (list 0 \"\" nil \"3\"))")});
    EXPECT_EQ(tooShort.out, QStringLiteral("nil\n"));
}

TEST(CallCommand, StandardInputGivesOneAnswerALine) {
    PlcdbRun run =
        Call({QStringLiteral("-")},
             "(zel_mbsel '(0))\n\n(zel_delay 1)\n(no_such_function)\n(zel_mbsel '(1 2))\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, QStringLiteral("nil\n\n\nnil\n"));
    EXPECT_TRUE(run.err.contains(QStringLiteral("no_such_function")));
}

TEST(CallCommand, UnreadableTextAndUnknownNamesExitWithStatusTwo) {
    for (const char* expression : {"(zel_delay", "(zel_delay 99999)", "(bogus 1)", "zel_delay"}) {
        PlcdbRun run = Call({QString::fromLatin1(expression)});
        EXPECT_EQ(run.status, 2) << expression;
        EXPECT_FALSE(run.err.isEmpty()) << expression;
        EXPECT_EQ(run.out, QString()) << expression;
    }
}

// Regression: the error repeated the whole input, so megabytes of input gave megabytes
// of message.
TEST(CallCommand, ErrorsQuoteAShortExcerptOfAHugeInput) {
    const QByteArray unclosed = "(zel_delay" + QByteArray(" 1").repeated(2000000);
    const QByteArray unknown = '(' + QByteArray(1000000, 'f') + ')';
    const PlcdbRun run = Call({QStringLiteral("-")}, unclosed + '\n' + unknown + '\n');
    EXPECT_EQ(run.status, 2);
    const QStringList lines = run.err.split(u'\n');
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(lines[0],
              "plcdb call: cannot read (zel_delay 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1... (4000010 "
              "characters): missing ')' at the end of the call");
    EXPECT_TRUE(lines[1].startsWith(
        "plcdb call: ffffffffffffffffffffffffffffffffffffffff... (1000000 characters) is not an "
        "external function; known are "))
        << qPrintable(lines[1]);
    EXPECT_LT(run.err.size(), 1000);
}

TEST(CallCommand, HelpIsThereForTheProgramAndItsCommands) {
    PlcdbRun main = RunPlcdb({QStringLiteral("--help")});
    EXPECT_EQ(main.status, 0);
    EXPECT_TRUE(main.out.contains(QStringLiteral("call EXPR")));
    PlcdbRun call = RunPlcdb(BuildPath(QStringLiteral("plcdb")),
                             {QStringLiteral("call"), QStringLiteral("--help")});
    EXPECT_EQ(call.status, 0);
    EXPECT_TRUE(call.out.contains(QStringLiteral("zel_mbsel")));
    PlcdbRun unknown = RunPlcdb({QStringLiteral("frobnicate")});
    EXPECT_EQ(unknown.status, 2);
}

TEST(CallCommand, APluginNamedWithoutAFolderIsTakenFromTheCurrentFolder) {
    // Regression: --plugin zel_mb.so was looked for on the system's library path only.
    QTemporaryDir dir;
    for (const char* file : {"zel_mb.so", "zel_mbres.so"}) {
        ASSERT_TRUE(QFile::copy(BuildPath(QString::fromLatin1(file)), dir.filePath(file)));
    }
    const PlcdbRun run =
        RunPlcdbIn(dir.path(), {QStringLiteral("--plugin"), QStringLiteral("zel_mb.so"),
                                QStringLiteral("call"), QStringLiteral("(zel_mbsel '(0))")});
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    EXPECT_EQ(run.out, QStringLiteral("nil\n"));
}

TEST(CallCommand, WithoutItsResourceLibraryThePluginRefusesToStart) {
    QTemporaryDir dir;
    const QString program = dir.filePath(QStringLiteral("plcdb"));
    ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("plcdb")), program));
    ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("zel_mb.so")), dir.filePath("zel_mb.so")));
    QFile::setPermissions(program, QFile::permissions(program) | QFile::ExeOwner);
    PlcdbRun run = RunPlcdb(program, {QStringLiteral("call"), QStringLiteral("(zel_delay 1)")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("zel_mbres"))) << qPrintable(run.err);
}
