#include "CKVModuleDB.h"
#include "CatalogDocument.h"
#include "ModuleSpecForm.h"
#include "ZelDbMigrate.h"
#include "ZelPlcDbIO.h"

#include "TestSupport.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// A store file with one saved module, C1 of M / S / T1, and a form for a new module.
class NewModuleTest : public testing::Test {
protected:
    void SetUp() override {
        m_path = m_dir.filePath("ZEL_PLC.MDB");
        ZelPlcDbIO::SetInstance(&m_store);
    }
    void TearDown() override { ZelPlcDbIO::SetInstance(nullptr); }

    void makeStore() {
        ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(m_path));
        CKVModuleDB db;
        ASSERT_TRUE(db.Open(m_path));
        const int handle = db.NewModule("M", "S", "T1", "C1");
        ASSERT_GT(handle, 0);
        ASSERT_TRUE(db.SaveModule(handle));
        db.Close();
    }

    ModuleSpecForm form(const QString& type, const QString& catalog) {
        ModuleSpecForm form;
        form.m_strManufacturer = "M";
        form.m_strSeries = "S";
        form.m_strType = type;
        form.m_strCatalog = catalog;
        form.m_aPrompts = QStringList(9, QString());
        return form;
    }

    QJsonObject exported() {
        CKVModuleDB db;
        QJsonObject document;
        EXPECT_TRUE(db.Open(m_path));
        EXPECT_TRUE(CatalogDocument::Export(db, document, nullptr));
        return document;
    }

    QJsonObject module(const QString& type, const QString& catalog) {
        CKVModuleDB db;
        QJsonObject object;
        EXPECT_TRUE(db.Open(m_path));
        EXPECT_TRUE(CatalogDocument::ExportModule(db, "M", "S", type, catalog, object, nullptr));
        return object;
    }

    QTemporaryDir m_dir;
    QString m_path;
    ZelPlcDbIO m_store;
};

TEST_F(NewModuleTest, RowOneCarriesTheNamesAndTheDescriptionCutToSixtyTheOthersOnlyTheirNumber) {
    makeStore();
    ModuleSpecForm newForm = form("T1", "C2");
    const QString description = QString(60, u'd') + u'X';
    newForm.m_strDescription = description;
    newForm.m_nTermCount = 3;
    ASSERT_EQ(newForm.CreateModule(m_path), ModuleSpecForm::Outcome::Created);

    const QJsonObject object = module("T1", "C2");
    EXPECT_EQ(object["spec"]["Description"].toString(), description);
    const QJsonArray rows = object["terminals"].toArray();
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0]["text"].toString(), "HP?SPACE");
    EXPECT_EQ(rows[0]["special"].toString(), "TERM_=1;MFG=M;CAT=C2;DESC=" + QString(60, u'd') +
                                                 ";TAG=PLC%N;LINE1=RACK %%1;LINE2=SLOT %%2");
    EXPECT_EQ(rows[1]["special"].toString(), "TERM_=2");
    EXPECT_EQ(rows[2]["special"].toString(), "TERM_=3");
}

TEST_F(NewModuleTest, ANewTypeGetsItsIndexRow) {
    makeStore();
    ModuleSpecForm newType = form("T2", "C1");
    ASSERT_EQ(newType.CreateModule(m_path), ModuleSpecForm::Outcome::Created);
    newType.ReadHierarchy(m_path);
    EXPECT_EQ(newType.StoreTypesOf("m", "s"), QStringList({"T1", "T2"}));
}

TEST_F(NewModuleTest, ATypeTableThatNeedsAnUpgradeGetsNoModuleEvenAfterTheUpgrade) {
    ASSERT_TRUE(CreateVersion1Database(m_path));
    {
        CKVModuleDB db;
        ASSERT_TRUE(db.Open(m_path));
        ASSERT_TRUE(db.AddIndex("M", "S", "T1"));
    }
    ModuleSpecForm newForm = form("T1", "C2");
    EXPECT_EQ(newForm.CreateModule(m_path), ModuleSpecForm::Outcome::NeedsMigration);
    ASSERT_TRUE(Migrate(m_path, false, true, nullptr, {}, {}, {}, {}));
    EXPECT_TRUE(exported()["modules"].toArray().isEmpty());
    // Confirmed again, it is made.
    EXPECT_EQ(newForm.CreateModule(m_path), ModuleSpecForm::Outcome::Created);
    EXPECT_EQ(exported()["modules"].toArray().size(), 1);
}

TEST(ModuleSpecForm, AddressBaseKeywordsIgnoreCaseAndAnUnknownTextKeepsTheEntry) {
    const struct {
        const char* text;
        int index;
    } cases[] = {{"oct", 0},         {"OCTAL", 0}, {"Dec", 1},  {"decimal", 1}, {"HEX", 2},
                 {"Hexadecimal", 2}, {"", 3},      {"octa", 7}, {"none", 7},    {" hex", 7}};
    for (const auto& test : cases) {
        EXPECT_EQ(ModuleSpecForm::AddrBaseIndexFromText(test.text, 7), test.index) << test.text;
    }
    const QStringList stored = {"", "Octal", "Decimal", "Hexadecimal", "", ""};
    for (int index = -1; index <= 4; ++index) {
        EXPECT_EQ(ModuleSpecForm::AddrBaseText(index), stored[index + 1]) << index;
    }
}

TEST(ModuleSpecForm, DirectionChoicesSetTheTwoLowBitsAndKeepTheOthers) {
    // The choices are the texts of the direction list.
    const ProgramTexts texts;
    ASSERT_TRUE(texts.loaded()) << qPrintable(texts.error());
    const struct {
        const char* choice;
        const char* flags;
        const char* result;
    } cases[] = {{"Input and Output", "", "3"},
                 {"output", "1", "2"},
                 {"INPUT", "6", "5"},
                 {"Not set", "7", "4"},
                 {"Input", "x", "1"}};
    for (const auto& test : cases) {
        EXPECT_EQ(ModuleSpecForm::DirFlagsForChoice(test.choice, test.flags), test.result)
            << test.choice;
    }
    EXPECT_EQ(ModuleSpecForm::DirectionMessageOf("7"), 4028);
    EXPECT_EQ(ModuleSpecForm::DirectionMessageOf("2"), 4029);
    EXPECT_EQ(ModuleSpecForm::DirectionMessageOf("5"), 4030);
    EXPECT_EQ(ModuleSpecForm::DirectionMessageOf(""), 4031);
}

}  // namespace
