#include "ModuleDefaults.h"
#include "ModuleSpecForm.h"

#include "TestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class ModuleDefaultsTest : public testing::Test {
protected:
    void write(const QString& name, const QByteArray& text) {
        QFile file(m_dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QTemporaryDir m_dir;
};

struct InfoCase {
    const char* what;
    const char* text;
    unsigned termCount;
    bool bHasTermCount;
    const char* colText2;
    const char* specNote;
    const char* specTail;
};

const InfoCase kInfoCases[] = {
    {"fewer than four data lines keep eight terminals", "Comment\n;Octal\n;24V\n;5\n", 8, false,
     "24V", "", ""},
    {"a fourth line of 0 gives one terminal", ";\n;\n;\n;0\n", 1, true, "", "", ""},
    {"a fourth line of text gives one terminal", ";\n;\n;\n;sixteen\n", 1, true, "", "", ""},
    {"blanks around the marker and the value are dropped", "  ;x\n ; col 2 \n;\n\t;  16 \n", 16,
     true, "col 2", "", ""},
    {"comment and empty lines do not count as data lines",
     "a\n;x\n\nb ;no data\n;two\nc\n;3\n;12\n", 12, true, "two", "", ""},
    {"lines 17 and 18 are the note and tail drawings, 19 is ignored",
     ";\n;\n;\n;4\n;\n;\n;\n;\n;\n;\n;\n;\n;\n;\n;\n;\n;note.sht\n;tail.sht\n;19\n", 4, true, "",
     "note.sht", "tail.sht"},
};

TEST_F(ModuleDefaultsTest, TheInfoFileGivesMeaningToDataLinesByTheirPlaceOnly) {
    for (const InfoCase& test : kInfoCases) {
        SCOPED_TRACE(test.what);
        write("KVDEFINF.DAT", test.text);
        const ModuleInfoDefaults info = ModuleDefaults::ReadInfo(m_dir.path());
        ModuleSpecForm form;
        form.ApplyInfoDefaults(info);
        EXPECT_EQ(form.m_nTermCount, test.termCount);
        EXPECT_EQ(info.bHasTermCount, test.bHasTermCount);
        EXPECT_EQ(form.m_strColText2, test.colText2);
        EXPECT_EQ(form.m_strSpecNote, test.specNote);
        EXPECT_EQ(form.m_strSpecTail, test.specTail);
    }
}

TEST_F(ModuleDefaultsTest, AnAddressBaseLineIsReadButLeavesTheEntryOfNone) {
    write("KVDEFINF.DAT", ";Hexadecimal\n;\n;42\n");
    const ModuleInfoDefaults info = ModuleDefaults::ReadInfo(m_dir.path());
    EXPECT_TRUE(info.bHasAddrBase);
    EXPECT_EQ(info.strAddrBase, "Hexadecimal");
    ModuleSpecForm form;
    form.ApplyInfoDefaults(info);
    EXPECT_EQ(form.m_nAddrBaseIndex, 3);
    EXPECT_EQ(form.m_nInfoNumber, 42);
}

TEST_F(ModuleDefaultsTest, EveryPromptLineIsOnePromptAndAMissingFileGivesNineEmptyOnes) {
    EXPECT_EQ(ModuleDefaults::ReadPrompts(m_dir.path()), QStringList(9, QString()));
    write("KVDEFPMT.DAT", " RACK \n;SLOT\n\nGROUP");
    EXPECT_EQ(ModuleDefaults::ReadPrompts(m_dir.path()),
              QStringList({"RACK", ";SLOT", "", "GROUP"}));
}

TEST_F(ModuleDefaultsTest, TypeChoicesPutTheStoreTypesFirstAndNeverDoubleAText) {
    write("KVDEFTPS.DAT", "Digital Input\n\n  digital input \nRelay\n\nCounter\n");
    const QStringList defaults = ModuleDefaults::ReadTypes(m_dir.path());
    EXPECT_EQ(defaults,
              QStringList({"Digital Input", "", "digital input", "Relay", "", "Counter"}));
    ModuleSpecForm form;
    form.m_lstHierarchy = {
        {"Other", {{"S1", {{"Wrong", "T9"}}}}},
        {"Maker",
         {{"S1", {{"DIGITAL INPUT", "T1"}, {"Analog", "T2"}}},
          {"S2", {{"Skipped", "T3"}}},
          {"s1", {{"COUNTER", "T4"}, {"Servo", "T5"}}}}},
        {"MAKER", {{"S1", {{"Second maker", "T6"}}}}},
    };
    EXPECT_EQ(form.TypeChoices("maker", "S1", defaults),
              QStringList({"Analog", "Servo", "Digital Input", "", "Relay", "Counter"}));
    // Without a series only the defaults remain.
    EXPECT_EQ(form.TypeChoices("Maker", "", defaults),
              QStringList({"Digital Input", "", "Relay", "Counter"}));
    EXPECT_EQ(form.SeriesOf("MAKER"), QStringList({"S1", "S2", "s1"}));
}

}  // namespace
