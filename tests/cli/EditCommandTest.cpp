#include "PlcdbProcess.h"
#include "TestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(EditCommand, WithoutADisplayTheEditorSaysSoInsteadOfOpening) {
    QTemporaryDir dir;
    const QString copy = dir.filePath(QStringLiteral("COPY.MDB"));
    ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")), copy));

    const PlcdbRun edit = RunPlcdb({QStringLiteral("--db"), copy, QStringLiteral("edit")});
    EXPECT_EQ(edit.status, 2);
    EXPECT_TRUE(edit.err.contains(QStringLiteral("no display for the database editor")))
        << qPrintable(edit.err);

    // The same command as the drawing program calls it: handled, nothing inserted.
    const PlcdbRun call =
        RunPlcdb({QStringLiteral("--db"), copy, QStringLiteral("call"), "(c:zel_plcedit)"});
    EXPECT_EQ(call.status, 0);
    EXPECT_TRUE(call.err.contains(QStringLiteral("The database editor needs a display")))
        << qPrintable(call.err);
    EXPECT_FALSE(call.err.contains(QStringLiteral("kv_inplc")));
}

TEST(EditCommand, WrongCallsAreRefusedBeforeAnythingStarts) {
    const PlcdbRun extra = RunPlcdb({QStringLiteral("edit"), QStringLiteral("now")});
    EXPECT_EQ(extra.status, 2);
    EXPECT_TRUE(extra.err.contains(QStringLiteral("unknown argument now")))
        << qPrintable(extra.err);

    const PlcdbRun help = RunPlcdb({QStringLiteral("edit"), QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.startsWith(QStringLiteral("Usage: plcdb [--db FILE] edit\n")))
        << qPrintable(help.out);
}
