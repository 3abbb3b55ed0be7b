#include "PlcdbProcess.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

TEST(SearchCommand, PrintsTheMatchesOrSaysWhyNot) {
    const QString notOurs = BuildPath(QStringLiteral("sample/kvmbblks.bsf"));
    const QString sample = BuildPath(QStringLiteral("sample/ZEL_PLC.MDB"));
    const struct {
        QStringList args;
        int status;
        QString out;
        QString err;
    } cases[] = {
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
        {{"search"}, 2, "", "give the text to search for"},
        {{"search", "NV", "--limit", "0"}, 2, "", "--limit needs"},
        {{"search", "NV", "--colour"}, 2, "", "unknown option --colour"},
        {{"--db", notOurs, "search", "NV"}, 2, "", "not a plcdb database"},
    };
    for (const auto& c : cases) {
        const QStringList args =
            c.args.first() == "--db" ? c.args : QStringList{"--db", sample} + c.args;
        const PlcdbRun run = RunPlcdb(args);
        EXPECT_EQ(run.status, c.status) << qPrintable(c.args.join(' ') + '\n' + run.err);
        EXPECT_EQ(run.out, c.out) << qPrintable(c.args.join(' '));
        EXPECT_EQ(run.err.isEmpty(), c.err.isEmpty()) << qPrintable(run.err);
        EXPECT_TRUE(run.err.contains(c.err)) << qPrintable(run.err);
    }
}
