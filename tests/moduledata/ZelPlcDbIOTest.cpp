#include "SqliteDb.h"
#include "ZelPlcDbIO.h"

#include "StoreTestSupport.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const QString kShared = QStringLiteral("Share Deny None");
const QString kRead = QStringLiteral("Read");
const QString kReadExclusive = QStringLiteral("Read|Share Deny Read|Share Deny Write");

QString ConnectionText(const QString& path, const QString& mode) {
    return QStringLiteral("Provider=Any.Provider.1;Data Source=%1;Mode=%2;Engine Option=5")
        .arg(path, mode);
}

ModDB::ModSpecData SpecWithDistinctFields(const QString& code) {
    ModDB::ModSpecData spec;
    for (int place = 0; place < ModDB::ModSpecData::kFieldCount; ++place) {
        spec.field(place) =
            QStringLiteral("%1 %2").arg(ModDB::ModSpecData::FieldName(place)).arg(place);
    }
    spec.Code = code;
    return spec;
}

QStringList SpecFields(const ModDB::ModSpecData& spec) {
    QStringList fields;
    for (int place = 0; place < ModDB::ModSpecData::kFieldCount; ++place) {
        fields << spec.field(place);
    }
    return fields;
}

class ZelPlcDbIOFixture : public StoreFileTest {
protected:
    void SetUp() override {
        CreateStore();
        if (!HasFatalFailure() && !IsSkipped()) {
            ASSERT_TRUE(m_store.PutConnectionString(ConnectionText(m_path, kShared)))
                << m_store.m_strLastError.toStdString();
        }
    }

    // Adds a type and answers its table name.
    QString addType(const QString& manufacturer, const QString& series, const QString& type) {
        QString table;
        EXPECT_TRUE(m_store.AddIndexData(manufacturer, series, type))
            << m_store.m_strLastError.toStdString();
        EXPECT_TRUE(m_store.GetTypeTableName(manufacturer, series, type, table));
        return table;
    }

    void addRows(const QString& table, const QString& code, const QList<int>& numbers) {
        QList<ModDB::ModTermData> rows;
        for (int number : numbers) {
            rows.append({code, number, QStringLiteral("text%1").arg(number),
                         QStringLiteral("sp%1").arg(number)});
        }
        EXPECT_TRUE(m_store.AddModTermData(table + "_Data", rows));
    }

    QList<int> rowNumbers(const QString& table, const QString& code) {
        QList<ModDB::ModTermData> rows;
        EXPECT_TRUE(m_store.GetModTermData(table + "_Data", code, rows));
        QList<int> numbers;
        for (const ModDB::ModTermData& row : rows) {
            numbers << row.Number;
        }
        return numbers;
    }
};

using ZelPlcDbIOTest = OnEachBackend<ZelPlcDbIOFixture>;
PLCDB_ON_EACH_BACKEND(ZelPlcDbIOTest);

// What only a file has: modes of its own, and a path that the file can be moved from.
class ZelPlcDbIOFileTest : public ZelPlcDbIOFixture {};

// The index rows as "Manufacturer|Series|Type", a type row (one with a table) marked "*".
QStringList IndexRows(ZelPlcDbIO& store) {
    QList<ModDB::IndexData> rows;
    EXPECT_TRUE(store.GetArrayOfAllIndexData(rows));
    QStringList texts;
    for (const ModDB::IndexData& row : rows) {
        EXPECT_FALSE(row.Series.isNull());
        texts << QStringList{row.Manufacturer, row.Series, row.Type}.join('|') +
                     (row.TableName.isEmpty() ? "" : "*");
    }
    return texts;
}

TEST_P(ZelPlcDbIOTest, IndexComesGroupedAndSortedWithoutRegardToCaseEmptyNamesFirst) {
    EXPECT_TRUE(m_store.AddIndexData("Zeta", QString(), QString()));
    addType("acme", "S2", "T1");
    EXPECT_TRUE(m_store.AddIndexData("ACME", "s1", QString()));
    addType("Acme", "S1", "T2");
    addType("ACME", "s2", "a0");
    // An empty name sorts first, yet below the row it belongs to.
    addType("M", "S", "");
    addType("M", "", "T");
    addType("M", "", "");
    EXPECT_EQ(IndexRows(m_store), QStringList({"acme||", "ACME|s1|", "Acme|S1|T2*", "acme|S2|",
                                               "ACME|s2|a0*", "acme|S2|T1*", "M||", "M||", "M||*",
                                               "M||T*", "M|S|", "M|S|*", "Zeta||"}));
}

TEST_P(ZelPlcDbIOTest, NamesAreUniquePerLevelWithoutRegardToCaseUnicodeIncluded) {
    EXPECT_TRUE(m_store.AddIndexData("ÄRGER", QString(), QString()));
    EXPECT_FALSE(m_store.AddIndexData("ärger", QString(), QString()));
    EXPECT_FALSE(m_store.m_strLastError.isEmpty());
    const QString table = addType("ärger", "Σειρά", "T");
    EXPECT_FALSE(m_store.AddIndexData("ÄRGER", "ΣΕΙΡΆ", "t"));
    // A series of that name under the manufacturer is another level.
    EXPECT_TRUE(m_store.AddIndexData("Other", "ärger", QString()));
    EXPECT_FALSE(m_store.AddIndexData(QString(), "S", "T"));

    const struct {
        QString manufacturer, series, type;
        bool exists;
    } cases[] = {
        {"äRGER", QString(), QString(), true},   {"ÄRGER", "σειρά", QString(), true},
        {"ärger", "ΣΕΙΡΆ", "t", true},           {"ärger", "ΣΕΙΡΆ", "u", false},
        {"other", QString(), QString(), true},   {"Other", "ärger", "T", false},
        {"nobody", QString(), QString(), false},
    };
    for (const auto& c : cases) {
        bool exists = !c.exists;
        EXPECT_TRUE(m_store.DoesIndexDataExist(c.manufacturer, c.series, c.type, exists));
        EXPECT_EQ(exists, c.exists)
            << c.manufacturer.toStdString() << "/" << c.series.toStdString();
    }
    QString again;
    EXPECT_TRUE(m_store.GetTypeTableName("ärger", "σειρά", "T", again));
    EXPECT_EQ(again, table);
    EXPECT_FALSE(m_store.GetTypeTableName("ärger", "σειρά", QString(), again));
}

TEST_P(ZelPlcDbIOTest, RenameChangesTheLowestGivenLevelAndRefusesATakenName) {
    const QString table = addType("M", "S", "T");
    addType("M", "S", "U");
    addType("M", "R", "T");
    EXPECT_TRUE(m_store.AddIndexData("N", QString(), QString()));

    const struct {
        QString manufacturer, series, type, newName;
        bool ok;
    } cases[] = {
        {"M", "S", "T", "u", false},
        {"M", "S", "T", "V", true},
        {"M", "s", QString(), "r", false},
        {"M", "s", QString(), "Q", true},
        {"m", QString(), QString(), "n", false},
        {"m", QString(), QString(), "m", true},
        {"m", QString(), QString(), "L", true},
        {"Gone", QString(), QString(), "X", false},
        {"L", "Q", "V", QString(), false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(m_store.RenameIndexData(c.manufacturer, c.series, c.type, c.newName), c.ok)
            << c.manufacturer.toStdString() << "/" << c.newName.toStdString();
    }
    // The type keeps its table through all renames.
    QString renamed;
    ASSERT_TRUE(m_store.GetTypeTableName("L", "Q", "V", renamed));
    EXPECT_EQ(renamed, table);
}

TEST_P(ZelPlcDbIOTest, SpecRowsKeepAllFieldsAndCodesCompareWithoutRegardToCase) {
    const QString table = addType("M", "S", "T");
    const QString other = addType("M", "S", "U");
    ModDB::ModSpecData spec = SpecWithDistinctFields("Öl-1");
    ASSERT_TRUE(m_store.AddModSpecData(table, spec, false));
    EXPECT_FALSE(m_store.AddModSpecData(table, SpecWithDistinctFields("öL-1"), true));
    EXPECT_TRUE(m_store.AddModSpecData(other, SpecWithDistinctFields("ÖL-1"), false));
    EXPECT_TRUE(m_store.AddModSpecData(table, SpecWithDistinctFields("a-2"), false));

    ModDB::ModSpecData read;
    ASSERT_TRUE(m_store.GetModSpecData(table, "öl-1", read, false));
    EXPECT_EQ(SpecFields(read), SpecFields(spec));
    spec.Description = "changed";
    spec.DirFlags.clear();
    ASSERT_TRUE(m_store.UpdateModSpecData(table, "ÖL-1", spec, false))
        << m_store.m_strLastError.toStdString();
    ASSERT_TRUE(m_store.GetModSpecData(table, "Öl-1", read, true));
    EXPECT_EQ(SpecFields(read), SpecFields(spec));
    EXPECT_FALSE(m_store.UpdateModSpecData(table, "none", spec, false));
    EXPECT_FALSE(m_store.GetModSpecData(table, "none", read, false));

    QStringList codes;
    ASSERT_TRUE(m_store.GetArrayOfModSpecCodes(table, codes));
    EXPECT_EQ(codes, QStringList({"a-2", "Öl-1"}));
    EXPECT_FALSE(m_store.RenameModSpecData(table, "a-2", "öl-1"));
    EXPECT_TRUE(m_store.RenameModSpecData(table, "a-2", "A-2"));
    EXPECT_TRUE(m_store.RemoveModSpecData(table, "öl-1"));
    EXPECT_FALSE(m_store.RemoveModSpecData(table, "öl-1"));
    ASSERT_TRUE(m_store.GetArrayOfModSpecCodes(table, codes));
    EXPECT_EQ(codes, QStringList({"A-2"}));
    bool exists = false;
    EXPECT_TRUE(m_store.DoesSpecDataExist(other, "öl-1", exists));
    EXPECT_TRUE(exists);
}

TEST_P(ZelPlcDbIOTest, TerminalRowsComeInNumberOrderAndBatchesAreAtomic) {
    const QString table = addType("M", "S", "T");
    const QString data = table + "_Data";
    QList<ModDB::ModTermData> rows{{"x", 1, "", ""}};
    EXPECT_TRUE(m_store.GetModTermData(data, "C", rows));
    EXPECT_TRUE(rows.isEmpty());

    addRows(table, "C", {3, 1, 2});
    addRows(table, "other", {1});
    ASSERT_TRUE(m_store.GetModTermData(data, "c", rows));
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0].Code, "C");
    EXPECT_EQ(rows[0].Text, "text1");
    EXPECT_EQ(rows[2].Special, "sp3");
    // Row 2 exists already: none of the batch is added.
    EXPECT_FALSE(m_store.AddModTermData(data, {{"C", 4, "", ""}, {"C", 2, "", ""}}));
    EXPECT_EQ(rowNumbers(table, "C"), QList<int>({1, 2, 3}));

    for (const auto& [row, expected] : {std::pair{-1, true}, {3, true}, {4, false}}) {
        bool exists = !expected;
        EXPECT_TRUE(m_store.DoesTermDataExist(data, "C", row, exists));
        EXPECT_EQ(exists, expected) << row;
    }
    EXPECT_TRUE(m_store.RemoveModTermData(data, "C", 2, 2));
    EXPECT_EQ(rowNumbers(table, "C"), QList<int>({1, 3}));
    EXPECT_FALSE(m_store.RenameModTermData(data, "C", "OTHER"));
    EXPECT_TRUE(m_store.RenameModTermData(data, "C", "D"));
    EXPECT_EQ(rowNumbers(table, "d"), QList<int>({1, 3}));
    EXPECT_TRUE(m_store.RemoveModTermData(data, "D", -1, -1));
    EXPECT_TRUE(rowNumbers(table, "D").isEmpty());
    EXPECT_EQ(rowNumbers(table, "other"), QList<int>({1}));

    // Rows go in batches of 100, 10 and 1: 123 rows fill each size, and every row
    // keeps its own texts whichever batch it went in.
    QList<int> many;
    for (int number = 123; number >= 1; --number) {
        many << number;
    }
    addRows(table, "Many", many);
    ASSERT_TRUE(m_store.GetModTermData(data, "many", rows));
    ASSERT_EQ(rows.size(), 123);
    for (const int number : {1, 100, 101, 110, 111, 120, 121, 123}) {
        EXPECT_EQ(rows[number - 1].Number, number);
        EXPECT_EQ(rows[number - 1].Text, QStringLiteral("text%1").arg(number));
        EXPECT_EQ(rows[number - 1].Special, QStringLiteral("sp%1").arg(number));
    }
}

TEST_P(ZelPlcDbIOTest, StyleBoxesStayNineAndPromptsAreFoundAsWritten) {
    // There are nine, and no update makes a tenth.
    ModDB::StyleBoxData style;
    EXPECT_FALSE(m_store.UpdateStyleBoxData(10, style));
    EXPECT_FALSE(m_store.UpdateStyleBoxData(0, style));
    EXPECT_TRUE(m_store.GetStyleBoxData(9, style));
    EXPECT_FALSE(m_store.GetStyleBoxData(10, style));

    // The empty answer before the row is added must not stay cached.
    EXPECT_TRUE(m_store.ReturnLocalizedPrompt("SLOT NO.").isEmpty());
    EXPECT_TRUE(m_store.AddPromptRow({"SLOT NO.", "STECKPLATZ"}));
    EXPECT_FALSE(m_store.AddPromptRow({"SLOT NO.", "again"}));
    EXPECT_EQ(m_store.ReturnLocalizedPrompt("SLOT NO."), "STECKPLATZ");
    ZelPlcDbIO fresh;
    ASSERT_TRUE(fresh.PutConnectionString(ConnectionText(m_path, kRead)));
    EXPECT_EQ(fresh.ReturnLocalizedPrompt("SLOT NO."), "STECKPLATZ");
    EXPECT_TRUE(fresh.ReturnLocalizedPrompt("slot no.").isEmpty());
}

TEST_F(ZelPlcDbIOFileTest, EachFileOpensOnlyInTheModesItAllows) {
    const QString writable = m_dir.filePath("writable.mdb");
    const QString locked = m_dir.filePath("locked.mdb");
    const QString garbage = m_dir.filePath("garbage.mdb");
    const QString foreign = m_dir.filePath("foreign.mdb");
    const QString missing = m_dir.filePath("missing.mdb");
    ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(writable));
    ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(locked));
    ASSERT_FALSE(ZelPlcDbIO::CreateDatabase(locked));
    ASSERT_TRUE(
        QFile::setPermissions(locked, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    QFile file(garbage);
    const QByteArray noise(4096, '\x5a');
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(noise) == noise.size());
    file.close();
    {
        SqliteDb other;
        ASSERT_TRUE(other.open(foreign, SqliteOpenMode::Create));
        ASSERT_TRUE(other.exec("CREATE TABLE plc_index (x)"));
    }

    const struct {
        QString path;
        bool shared, read, exclusive;
    } cases[] = {
        {writable, true, true, true},   {locked, false, true, true},
        {garbage, false, false, false}, {foreign, false, false, false},
        {missing, false, false, false}, {m_dir.path(), false, false, false},
    };
    for (const auto& c : cases) {
        ZelPlcDbIO store;
        EXPECT_EQ(store.PutConnectionString(ConnectionText(c.path, kShared)), c.shared)
            << c.path.toStdString();
        EXPECT_EQ(store.PutConnectionString(ConnectionText(c.path, kRead)), c.read)
            << c.path.toStdString();
        EXPECT_EQ(store.PutConnectionString(ConnectionText(c.path, kReadExclusive)), c.exclusive)
            << c.path.toStdString();
    }
    EXPECT_FALSE(QFile::exists(missing));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), noise);
}

TEST_F(ZelPlcDbIOFileTest, ConnectionTextsInTheirUsualForms) {
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("a;b"));
    const QString odd = m_dir.filePath("a;b/ZEL_PLC.MDB");
    ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(odd));
    const struct {
        QString text;
        bool opens, writable;
    } cases[] = {
        {"Data Source=" + m_path, true, true},
        {"Provider;data source = " + m_path + " ; MODE = read", true, false},
        {"Data Source=\"" + odd + "\";Mode=Read|Share Deny Write", true, false},
        {"Data Source=\"" + odd + "\";Mode=ReadWrite|Share Deny None", true, true},
        {"Data Source=" + odd, false, false},
        {"Source=" + m_path, false, false},
        {"Mode=Read", false, false},
    };
    for (const auto& c : cases) {
        ZelPlcDbIO store;
        EXPECT_EQ(store.PutConnectionString(c.text), c.opens) << c.text.toStdString();
        EXPECT_EQ(store.UpdateStyleBoxData(1, ModDB::StyleBoxData()), c.writable)
            << c.text.toStdString();
    }
}

TEST_F(ZelPlcDbIOFileTest, TheSameConnectionTextKeepsTheOpenConnection) {
    const QString table = addType("M", "S", "T");
    const QString moved = m_dir.filePath("moved.mdb");
    ASSERT_TRUE(QFile::rename(m_path, moved));
    // Reopening would fail now that nothing lies at the path.
    EXPECT_TRUE(m_store.PutConnectionString(ConnectionText(m_path, kShared)));
    EXPECT_FALSE(m_store.PutConnectionString(ConnectionText(m_path, kRead)));
    // A failed open leaves the connection as it was.
    QString again;
    EXPECT_TRUE(m_store.GetTypeTableName("M", "S", "T", again));
    EXPECT_EQ(again, table);
    ASSERT_TRUE(QFile::rename(moved, m_path));
    EXPECT_TRUE(m_store.PutConnectionString(ConnectionText(m_path, kRead)));
    EXPECT_TRUE(m_store.GetTypeTableName("M", "S", "T", again));
}

}  // namespace
