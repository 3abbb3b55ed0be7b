#include "PlcdbProcess.h"
#include "SqliteDb.h"
#include "TestSupport.h"
#include "ZelDbMigrate.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// One fault of each kind under manufacturer M, series S: modules C1 (all row faults and a
// box value), C2 (no description), C3 (its type row is taken away below), an empty type,
// and style 2 with a box value that is no number.
const QByteArray kFaults = R"({"format":"plcdb","version":1,
 "index":[{"manufacturer":"M","series":"S","type":"Empty"}],
 "modules":[
  {"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C1","Description":"one",
   "BoxA1":"wide in","BoxA2":"1.5 in"},
   "terminals":[{"text":"HP?DI","special":"%%1PROMPT=RACK;LINE1=RACK %%1;LINE2=SLOT %%2"},
                {"text":"HP?NONE","special":"TERM_=2"},
                {"text":"HP?DI","special":"\\SPECIAL=INCLUDE;\\SPECIAL=EXCLUDE"},
                {"text":"HP?DI","special":"\\SPECIAL=ADDR_IN;\\SPECIAL=ADDR_OUT"},
                {"text":"HP?DI","special":"MFG1=M;CAT1=X;CNT1=2;MFG2=M;CAT2=Y;CNT2=two"}]},
  {"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C2"},
   "terminals":[{"text":"HP?DI","special":"TERM_=1"}]},
  {"manufacturer":"M","series":"S","type":"Gone","spec":{"Code":"C3","Description":"three"},
   "terminals":[{"text":"HP?DI","special":"TERM_=1"}]}],
 "styles":[{"number":2,"BoxA1":"x mm","BoxA2":"2 mm"}],
 "prompts":[{"prompt":"RACK","localized":"RACK"}]})";

QJsonObject Check(const QString& database, int expectedStatus) {
    const PlcdbRun run = RunPlcdb({QStringLiteral("--db"), database, QStringLiteral("check"),
                                   QStringLiteral("--blocks"), BuildPath(QStringLiteral("sample")),
                                   QStringLiteral("--json")});
    EXPECT_EQ(run.status, expectedStatus) << qPrintable(run.err);
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(run.out.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << qPrintable(run.out);
    return json.object();
}

bool RunSql(const QString& database, const QString& sql) {
    SqliteDb db;
    return db.open(database, SqliteOpenMode::ReadWrite) && db.exec(sql);
}

QString Text(const QJsonValue& value) {
    return value.isNull() ? QStringLiteral("null") : value.toVariant().toString();
}

}  // namespace

TEST(CheckCommand, EachFaultIsReportedWithItsCodeAndPlaceAndTheFileStaysAsItWas) {
    QTemporaryDir dir;
    const QString faults = dir.filePath(QStringLiteral("faults.db"));
    ASSERT_EQ(RunPlcdb({QStringLiteral("init"), faults}).status, 0);
    const PlcdbRun import = RunPlcdb(
        {QStringLiteral("--db"), faults, QStringLiteral("import"), QStringLiteral("-")}, kFaults);
    ASSERT_EQ(import.status, 0) << qPrintable(import.err);
    ASSERT_TRUE(RunSql(faults, QStringLiteral("DELETE FROM plc_index WHERE type = 'Gone'; "
                                              "DELETE FROM plc_style WHERE number = 9")));
    const QString older = dir.filePath(QStringLiteral("older.db"));
    ASSERT_TRUE(CreateVersion1Database(older));
    ASSERT_TRUE(RunSql(
        older,
        QStringLiteral("INSERT INTO plc_index (level, manufacturer, series, type, table_name, "
                       "manufacturer_key, series_key, type_key) VALUES "
                       "(1, 'M', '', '', '', 'm', '', ''), (2, 'M', 'S', '', '', 'm', 's', ''), "
                       "(3, 'M', 'S', 'Old', 'T1', 'm', 's', 'old')")));

    struct Expected {
        const QString* database;
        const char* severity;
        const char* code;
        const char* place;  // manufacturer|series|type|catalog|row
    };
    const Expected expected[] = {
        {&faults, "error", "box-not-number", "M|S|T|C1|null"},
        {&faults, "error", "missing-prompt", "M|S|T|C1|1"},
        {&faults, "error", "unknown-block", "M|S|T|C1|2"},
        {&faults, "error", "both-show-flags", "M|S|T|C1|3"},
        {&faults, "error", "both-address-flags", "M|S|T|C1|4"},
        {&faults, "error", "extra-count-not-number", "M|S|T|C1|5"},
        {&faults, "warning", "empty-description", "M|S|T|C2|null"},
        {&faults, "warning", "empty-type", "M|S|Empty|null|null"},
        {&faults, "error", "module-without-index", "null|null|null|C3|null"},
        {&faults, "error", "box-not-number", "null|null|null|null|null"},
        {&faults, "error", "missing-style-rows", "null|null|null|null|null"},
        {&older, "error", "needs-migration", "M|S|Old|null|null"},
        {&older, "warning", "empty-type", "M|S|Old|null|null"},
    };
    QFile file(faults);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();
    const QJsonObject reports[] = {Check(faults, 1), Check(older, 1)};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);

    QStringList seen[2];
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(reports[i].value("database").toString(), i == 0 ? faults : older);
        for (const QJsonValue& value : reports[i].value("findings").toArray()) {
            const QJsonObject f = value.toObject();
            EXPECT_FALSE(f.value("message").toString().isEmpty());
            seen[i] << QStringList{f.value("severity").toString(),
                                   f.value("code").toString(),
                                   Text(f.value("manufacturer")),
                                   Text(f.value("series")),
                                   Text(f.value("type")),
                                   Text(f.value("catalog")),
                                   Text(f.value("row"))}
                           .join(u'|');
        }
    }
    int counts[2][2] = {};
    for (const Expected& e : expected) {
        const int i = e.database == &faults ? 0 : 1;
        const QString line = QStringLiteral("%1|%2|%3").arg(e.severity, e.code, e.place);
        EXPECT_EQ(seen[i].count(line), 1) << qPrintable(line) << "\n"
                                          << qPrintable(seen[i].join(u'\n'));
        ++counts[i][QLatin1String(e.severity) == QLatin1String("error") ? 0 : 1];
    }
    for (int i = 0; i < 2; ++i) {
        // Nothing beyond the faults made: a finding too many is a rule that misfires.
        EXPECT_EQ(seen[i].size(), counts[i][0] + counts[i][1]) << qPrintable(seen[i].join(u'\n'));
        EXPECT_EQ(reports[i].value("errors").toInt(), counts[i][0]);
        EXPECT_EQ(reports[i].value("warnings").toInt(), counts[i][1]);
    }
}

TEST(CheckCommand, TheSampleHasNoErrorAndAFileThatIsNoDatabaseEndsWithTwo) {
    const QJsonObject sample = Check(BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")), 0);
    EXPECT_EQ(sample.value("errors").toInt(), 0);
    EXPECT_TRUE(sample.value("blockList").toString().endsWith(QStringLiteral("kvmbblks.bsf")));

    QTemporaryDir dir;
    const QString junk = dir.filePath(QStringLiteral("junk.mdb"));
    QFile file(junk);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("this is no database\n");
    file.close();
    const PlcdbRun run = RunPlcdb({QStringLiteral("--db"), junk, QStringLiteral("check")});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.err.contains(QStringLiteral("not a plcdb database"))) << qPrintable(run.err);
}
