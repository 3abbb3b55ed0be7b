#include "PlcdbProcess.h"
#include "TestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(SearchCommand, PrintsTheMatchesOrSaysWhyNot) {
    QTemporaryDir dir;
    QFile garbage(dir.filePath(QStringLiteral("garbage.mdb")));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly) && garbage.write(QByteArray(4096, 'x')) > 0);
    garbage.close();
    const QString sample = BuildPath(QStringLiteral("sample/ZEL_PLC.MDB"));
    struct Case {
        QStringList args;
        int status;
        QString out;
        QString err;
    };
    const Case cases[] = {
        {{"search", "24V dc s"},
         0,
         "Norvale Controls\tNV-100\tDigital Input\tNV-1108\t8 point 24V DC sink input\n"
         "Norvale Controls\tNV-100\tDigital Input\tNV-1116\t16 point 24V DC sink input\n"
         "Norvale Controls\tNV-100\tDigital Input\tNV-1132\t32 point 24V DC sink input, high "
         "density\n"
         "Norvale Controls\tNV-100\tDigital Output\tNV-1208\t8 point 24V DC source output\n"
         "Norvale Controls\tNV-100\tDigital Output\tNV-1232\t32 point 24V DC source output\n",
         ""},
        {{"search", "--limit", "2", "24v DC"},
         0,
         "Kestrel Automation\tKX\tDigital Input\tKX-DI16\tDigital input 16 x 24V DC\n"
         "Kestrel Automation\tKX\tDigital Input\tKX-DI24\tDigital input 24 x 24V DC\n",
         ""},
        {{"search", "nv-1108", "--json"},
         0,
         "[{\"catalog\":\"NV-1108\",\"description\":\"8 point 24V DC sink input\","
         "\"manufacturer\":\"Norvale Controls\",\"series\":\"NV-100\",\"type\":\"Digital "
         "Input\"}]\n",
         ""},
        {{"search", "no such module"}, 1, "", ""},
        {{"search", "no such module", "--json"}, 1, "[]\n", ""},
        {{"search"}, 2, "", "give the text to search for"},
        {{"search", "a", "b"}, 2, "", "give one text"},
        {{"search", "NV", "--limit", "0"}, 2, "", "--limit needs"},
        {{"search", "NV", "--limit"}, 2, "", "--limit needs"},
        {{"search", "NV", "--colour"}, 2, "", "unknown option --colour"},
        {{"--db", garbage.fileName(), "search", "NV"}, 2, "", "not a plcdb database"},
        {{"--db", dir.filePath("missing.mdb"), "search", "NV"}, 2, "", "does not exist"},
    };
    for (const Case& c : cases) {
        const QStringList args =
            c.args.first() == "--db" ? c.args : QStringList{"--db", sample} + c.args;
        const PlcdbRun run = RunPlcdb(args);
        EXPECT_EQ(run.status, c.status) << qPrintable(c.args.join(' ') + '\n' + run.err);
        EXPECT_EQ(run.out, c.out) << qPrintable(c.args.join(' '));
        EXPECT_EQ(run.err.isEmpty(), c.err.isEmpty()) << qPrintable(run.err);
        EXPECT_TRUE(run.err.contains(c.err)) << qPrintable(run.err);
    }
}
